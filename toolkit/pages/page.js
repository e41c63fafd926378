"use strict";
// The light on an Umbrix map, as `umbrix relight` makes it.

const byId = id => document.getElementById(id);
const canvas = byId("picture");
const images = { map: byId("map"), albedo: byId("albedo") };
const settings = ["azimuth", "elevation", "exposure", "ambient", "tiles", "show"];

// In the order of the shader's modes.
const modes = ["projection", "unit", "flat", "squared"];

// The unit vector towards the light.
function towards(state) {
    const azimuth = state.azimuth * Math.PI / 180;
    const elevation = state.elevation * Math.PI / 180;
    const across = Math.cos(elevation);
    return [across * Math.cos(azimuth), across * Math.sin(azimuth), Math.sin(elevation)];
}

const vertexShader = `#version 300 es
in vec2 corner;
uniform vec2 tiles;
out vec2 uv;
void main() { uv = corner * tiles; gl_Position = vec4(corner * 2.0 - 1.0, 0.0, 1.0); }`;

const fragmentShader = `#version 300 es
precision highp float;
uniform sampler2D map, albedo;
uniform vec3 towards;
uniform float exposure, ambient;
uniform int mode, show;
uniform bool coloured;
in vec2 uv;
out vec4 colour;
{umbrix_light}
vec3 to_light(vec3 c) { return mix(pow((c + 0.055) / 1.055, vec3(2.4)), c / 12.92, lessThanEqual(c, vec3(0.04045))); }
vec3 to_code(vec3 l) {
    vec3 c = clamp(l, 0.0, 1.0);
    return mix(1.055 * pow(c, vec3(1.0 / 2.4)) - 0.055, c * 12.92, lessThanEqual(c, vec3(0.0031308)));
}
void main() {
    vec3 c = texture(map, uv).rgb;
    float light = umbrix_light(c, towards, mode, exposure, ambient);
    vec3 lit = coloured ? to_code(to_light(texture(albedo, uv).rgb) * light) : vec3(light);
    vec3 shown[5] = vec3[5](lit, c, c.rrr, c.ggg, c.bbb);
    colour = vec4(shown[show], 1.0);
}`;

function shader(gl, type, text) {
    const made = gl.createShader(type);
    gl.shaderSource(made, text);
    gl.compileShader(made);
    return made;
}

function texture(gl, unit, image) {
    gl.activeTexture(gl.TEXTURE0 + unit);
    gl.bindTexture(gl.TEXTURE_2D, gl.createTexture());
    gl.pixelStorei(gl.UNPACK_FLIP_Y_WEBGL, true);
    gl.pixelStorei(gl.UNPACK_COLORSPACE_CONVERSION_WEBGL, gl.NONE);
    gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA8, gl.RGBA, gl.UNSIGNED_BYTE, image);
    gl.generateMipmap(gl.TEXTURE_2D);
    gl.texParameteri(gl.TEXTURE_2D, gl.TEXTURE_MIN_FILTER, gl.LINEAR_MIPMAP_LINEAR);
}

// A function that draws a state, or what is in the way.
function drawer() {
    const gl = canvas.getContext("webgl2", { antialias: false });
    if (!gl) {
        return "This browser has no WebGL 2, so the light cannot be moved.";
    }
    if (Math.max(images.map.naturalWidth, images.map.naturalHeight) > gl.getParameter(gl.MAX_TEXTURE_SIZE)) {
        return "The map is larger than the graphics processor takes, so the light cannot be moved.";
    }
    const program = gl.createProgram();
    gl.attachShader(program, shader(gl, gl.VERTEX_SHADER, vertexShader));
    gl.attachShader(program, shader(gl, gl.FRAGMENT_SHADER, fragmentShader));
    gl.bindAttribLocation(program, 0, "corner");
    gl.linkProgram(program);
    gl.useProgram(program);
    gl.bindBuffer(gl.ARRAY_BUFFER, gl.createBuffer());
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array([0, 0, 1, 0, 0, 1, 1, 1]), gl.STATIC_DRAW);
    gl.enableVertexAttribArray(0);
    gl.vertexAttribPointer(0, 2, gl.FLOAT, false, 0, 0);
    texture(gl, 0, images.map);
    if (images.albedo) {
        texture(gl, 1, images.albedo);
    }
    const place = name => gl.getUniformLocation(program, name);
    gl.uniform1i(place("albedo"), images.albedo ? 1 : 0);
    gl.uniform1i(place("coloured"), images.albedo ? 1 : 0);
    gl.uniform1i(place("mode"), modes.indexOf(canvas.dataset.mode));
    return state => {
        const ratio = window.devicePixelRatio || 1;
        canvas.width = Math.round(canvas.clientWidth * ratio);
        canvas.height = Math.round(canvas.clientHeight * ratio);
        const wide = images.map.naturalWidth * state.tiles;
        const high = images.map.naturalHeight * state.tiles;
        const scale = Math.min(canvas.width / wide, canvas.height / high);
        const width = Math.round(wide * scale);
        const height = Math.round(high * scale);
        gl.viewport((canvas.width - width) >> 1, (canvas.height - height) >> 1, width, height);
        gl.uniform3fv(place("towards"), towards(state));
        gl.uniform1f(place("exposure"), state.exposure);
        gl.uniform1f(place("ambient"), state.ambient);
        gl.uniform2f(place("tiles"), state.tiles, state.tiles);
        gl.uniform1i(place("show"), state.show);
        gl.drawArrays(gl.TRIANGLE_STRIP, 0, 4);
    };
}

function main() {
    const state = {};
    let draw = drawer();
    let asked = false;

    if (typeof draw === "string") {
        byId("problem").textContent = draw;
        byId("problem").hidden = false;
        document.body.classList.add("plain");
        return;
    }

    function redraw() {
        if (!asked) {
            asked = true;
            requestAnimationFrame(() => { asked = false; draw(state); });
        }
    }
    // Takes the value of a setting within its bounds; an azimuth goes round.
    function set(name, value) {
        const field = byId(name);
        if (!Number.isFinite(value)) {
            return;
        }
        if (name === "azimuth") {
            value = (value % 360 + 360) % 360;
        } else if (field.type === "range") {
            value = Math.min(Math.max(value, +field.min), +field.max);
        } else if (![...field.options].some(option => +option.value === value)) {
            return;
        }
        state[name] = value;
        field.value = value;
        if (field.type === "range") {
            byId(name + "-value").textContent = +value.toFixed(2);
        }
        redraw();
    }
    // "#azimuth=90&elevation=30&panel=off"
    function obeyAddress() {
        for (const [name, value] of new URLSearchParams(location.hash.slice(1))) {
            if (settings.includes(name) && value !== "") {
                set(name, +value);
            } else if (name === "panel") {
                document.body.classList.toggle("bare", value === "off");
                redraw();
            }
        }
    }
    function reset() {
        settings.forEach(name => set(name, +byId(name).dataset.start));
    }

    // The middle of the picture is a light straight above, the edge the lowest one.
    function lightFrom(event) {
        const box = canvas.getBoundingClientRect();
        const x = event.clientX - box.left - box.width / 2;
        const y = box.top + box.height / 2 - event.clientY;
        const far = Math.min(2 * Math.hypot(x, y) / Math.min(box.width, box.height), 1);
        set("azimuth", Math.atan2(y, x) * 180 / Math.PI);
        set("elevation", 90 - 84 * far);
    }
    canvas.addEventListener("pointerdown", event => {
        canvas.setPointerCapture(event.pointerId);
        canvas.focus();
        lightFrom(event);
    });
    canvas.addEventListener("pointermove", event => {
        if (canvas.hasPointerCapture(event.pointerId)) {
            lightFrom(event);
        }
    });
    const keys = {
        ArrowLeft: () => set("azimuth", state.azimuth + 5),
        ArrowRight: () => set("azimuth", state.azimuth - 5),
        ArrowUp: () => set("elevation", state.elevation + 3),
        ArrowDown: () => set("elevation", state.elevation - 3),
        "+": () => set("exposure", state.exposure + 0.05),
        "-": () => set("exposure", state.exposure - 0.05),
        t: () => set("tiles", state.tiles % 4 + 1),
        c: () => set("show", (state.show + 1) % 5),
        r: reset,
    };
    canvas.addEventListener("keydown", event => {
        if (keys[event.key] && !event.ctrlKey && !event.metaKey && !event.altKey) {
            keys[event.key]();
            event.preventDefault();
        }
    });
    settings.forEach(name => byId(name).addEventListener("input", event => set(name, +event.target.value)));
    byId("panel").addEventListener("submit", event => event.preventDefault());
    canvas.addEventListener("webglcontextlost", event => { event.preventDefault(); draw = () => {}; });
    canvas.addEventListener("webglcontextrestored", () => { draw = drawer(); redraw(); });
    window.addEventListener("resize", redraw);
    window.addEventListener("hashchange", obeyAddress);
    reset();
    obeyAddress();
}

Promise.all([images.map, images.albedo].filter(Boolean).map(image => image.decode())).then(main);
