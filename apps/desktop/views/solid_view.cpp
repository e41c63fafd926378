// SPDX-License-Identifier: MIT
#include "views/solid_view.h"

#include "views/light_shader.h"
#include "views/texel_image.h"

#include <QKeyEvent>
#include <QMatrix4x4>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <string>

namespace umbrix_desktop {

namespace {

constexpr double kLeastFull = 0.05;
constexpr int kLargestSide = 2048; ///< Of the texture; a larger map is made smaller for it.

constexpr char const* kVertexShader = R"glsl(#version 330 core
layout(location = 0) in vec3 place;
layout(location = 1) in vec3 normal;
layout(location = 2) in vec3 right;
layout(location = 3) in vec2 uv;
uniform mat4 view;
uniform mat4 body;
uniform vec3 light;
uniform float tiles;
out vec2 texel;
out vec3 towards;
void main()
{
    // The light stands still, and the body turns: its tangent space sees another direction.
    vec3 out_of = mat3(body) * normal;
    vec3 along = mat3(body) * right;
    towards = vec3(dot(light, along), dot(light, cross(out_of, along)), dot(light, out_of));
    texel = uv * tiles;
    gl_Position = view * vec4(place, 1.0);
}
)glsl";

constexpr char const* kFragmentStart = R"glsl(#version 330 core
in vec2 texel;
in vec3 towards;
uniform sampler2D map;
uniform int mode;
uniform float exposure;
uniform float ambient;
uniform float full; // part of the light out of the ground at which that has its exposure
out vec4 colour;
)glsl";

constexpr char const* kFragmentEnd = R"glsl(
void main()
{
    vec3 channels = texture(map, texel).rgb;
    // The shader has ground as bright in every light; that of a body is brighter the more it faces the light.
    float facing = max(normalize(towards).z, 0.0) / full;
    colour = vec4(vec3(umbrix_light(channels, towards, mode, exposure * facing, ambient)), 1.0);
}
)glsl";

} // namespace

SolidView::SolidView(Shown const& shown, QWidget* parent) : QOpenGLWidget(parent), shown_(shown)
{
    setFormat(needed_format());
    setMinimumSize(120, 120);
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("The map on a body"));
    setAccessibleDescription(tr("The arrows turn the body, plus and minus bring it nearer or further off"));
}

SolidView::~SolidView()
{
    if (context() != nullptr) {
        makeCurrent();
        release();
        doneCurrent();
    }
}

QSurfaceFormat SolidView::needed_format()
{
    QSurfaceFormat format;
    format.setVersion(3, 3);
    format.setProfile(QSurfaceFormat::CoreProfile);
    format.setDepthBufferSize(24);
    return format;
}

void SolidView::set_solid(Solid solid)
{
    solid_ = solid;
    mesh_is_new_ = true;
    update();
}

void SolidView::set_lighting(Lighting const& lighting, Modes mode)
{
    lighting_ = lighting;
    mode_ = mode;
    update();
}

void SolidView::set_tiles(int tiles)
{
    tiles_ = tiles;
    update();
}

void SolidView::renew()
{
    map_is_new_ = true;
    update();
}

void SolidView::give_up(QString const& reason)
{
    usable_ = false;
    Q_EMIT unusable(reason);
}

void SolidView::initializeGL()
{
    if (!initializeOpenGLFunctions()) {
        return give_up(tr("it needs OpenGL 3.3"));
    }
    QString const fault = make_program();
    if (!fault.isEmpty()) {
        return give_up(fault);
    }
    glGenTextures(1, &texture_);
    glGenVertexArrays(1, &vertex_array_);
    glGenBuffers(2, buffers_.data());
    usable_ = true;
    mesh_is_new_ = map_is_new_ = true;
    connect(context(), &QOpenGLContext::aboutToBeDestroyed, this, [this] {
        makeCurrent();
        release();
        doneCurrent();
    });
}

void SolidView::release()
{
    if (!usable_) {
        return;
    }
    usable_ = false;
    glDeleteProgram(program_);
    glDeleteTextures(1, &texture_);
    glDeleteVertexArrays(1, &vertex_array_);
    glDeleteBuffers(2, buffers_.data());
}

unsigned SolidView::compiled(unsigned kind, char const* text, QString& fault)
{
    unsigned const shader = glCreateShader(kind);
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    int fine = 0;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &fine);
    if (fine == 0) {
        std::array<char, 512> log{};
        glGetShaderInfoLog(shader, static_cast<int>(log.size()) - 1, nullptr, log.data());
        fault = QString::fromUtf8(log.data());
    }
    return shader;
}

QString SolidView::make_program()
{
    QString fault;
    std::string const fragment = std::string(kFragmentStart) + kLightShader + kFragmentEnd;
    unsigned const shaders[] = {compiled(GL_VERTEX_SHADER, kVertexShader, fault),
                                compiled(GL_FRAGMENT_SHADER, fragment.c_str(), fault)};
    program_ = glCreateProgram();
    for (unsigned const shader : shaders) {
        glAttachShader(program_, shader);
    }
    glLinkProgram(program_);
    for (unsigned const shader : shaders) {
        glDeleteShader(shader);
    }
    int fine = 0;
    glGetProgramiv(program_, GL_LINK_STATUS, &fine);
    return fine != 0 ? QString() : fault.isEmpty() ? tr("its shader does not link") : fault;
}

void SolidView::upload_mesh()
{
    SolidMesh const mesh = make_solid(solid_);
    indices_ = static_cast<int>(mesh.indices.size());
    glBindVertexArray(vertex_array_);
    glBindBuffer(GL_ARRAY_BUFFER, buffers_[0]);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(mesh.vertices.size() * sizeof(SolidVertex)),
                 mesh.vertices.data(), GL_STATIC_DRAW);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffers_[1]);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(mesh.indices.size() * sizeof(std::uint32_t)), mesh.indices.data(),
                 GL_STATIC_DRAW);
    auto const attribute = [this](unsigned place, int numbers, std::size_t offset) {
        glEnableVertexAttribArray(place);
        glVertexAttribPointer(place, numbers, GL_FLOAT, GL_FALSE, sizeof(SolidVertex),
                              reinterpret_cast<void const*>(offset));
    };
    attribute(0, 3, offsetof(SolidVertex, place));
    attribute(1, 3, offsetof(SolidVertex, normal));
    attribute(2, 3, offsetof(SolidVertex, right));
    attribute(3, 2, offsetof(SolidVertex, u));
    mesh_is_new_ = false;
}

void SolidView::upload_map()
{
    QSize const size =
        shown_.size().boundedTo(shown_.size().scaled(QSize(kLargestSide, kLargestSide), Qt::KeepAspectRatio));
    QImage image(size.expandedTo({1, 1}), QImage::Format_RGB32);
    image.fill(Qt::black);
    Viewport const viewport = viewport_of({}, image.size(), shown_.size());
    for (Piece const* const piece : {&shown_.whole(Show::kMap), &shown_.preview(Show::kMap)}) {
        if (piece->picture) {
            draw_texels(image, *piece->picture, piece->area, viewport, Channel::kAll);
        }
    }
    // The texture begins at the bottom.
    QImage const texels = image.mirrored().convertToFormat(QImage::Format_RGBA8888);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, texels.width(), texels.height(), 0, GL_RGBA, GL_UNSIGNED_BYTE,
                 texels.constBits());
    glGenerateMipmap(GL_TEXTURE_2D);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_REPEAT);
    glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT);
    map_is_new_ = false;
}

void SolidView::paintGL()
{
    if (!usable_) {
        return;
    }
    glClearColor(0.16f, 0.16f, 0.16f, 1.0f);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    if (!shown_.has(Show::kMap)) {
        return;
    }
    if (mesh_is_new_) {
        upload_mesh();
    }
    if (map_is_new_) {
        upload_map();
    }
    QMatrix4x4 body;
    body.rotate(static_cast<float>(up_degrees_), 1, 0, 0);
    body.rotate(static_cast<float>(around_degrees_), 0, 1, 0);
    QMatrix4x4 view;
    view.perspective(35, static_cast<float>(width()) / static_cast<float>(std::max(height(), 1)), 0.1f, 20);
    view.translate(0, 0, static_cast<float>(-distance_));
    view *= body;

    constexpr double kRadians = std::numbers::pi / 180;
    double const azimuth = lighting_.light.azimuth_degrees * kRadians;
    double const elevation = lighting_.light.elevation_degrees * kRadians;
    auto const place = [this](char const* name) { return glGetUniformLocation(program_, name); };
    glUseProgram(program_);
    glUniformMatrix4fv(place("view"), 1, GL_FALSE, view.constData());
    glUniformMatrix4fv(place("body"), 1, GL_FALSE, body.constData());
    glUniform3f(place("light"), static_cast<float>(std::cos(elevation) * std::cos(azimuth)),
                static_cast<float>(std::cos(elevation) * std::sin(azimuth)),
                static_cast<float>(std::sin(elevation)));
    // A plane that stands upright is lit as the picture of it is.
    glUniform1f(place("full"),
                solid_ == Solid::kPlane ? static_cast<float>(std::max(std::sin(elevation), kLeastFull)) : 1);
    glUniform1f(place("tiles"), static_cast<float>(tiles_));
    glUniform1i(place("map"), 0);
    glUniform1i(place("mode"), static_cast<int>(mode_));
    glUniform1f(place("exposure"), static_cast<float>(lighting_.exposure));
    glUniform1f(place("ambient"), static_cast<float>(lighting_.ambient));
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, texture_);
    glEnable(GL_DEPTH_TEST);
    if (solid_ != Solid::kPlane) {
        glEnable(GL_CULL_FACE); // what is inside
    }
    glBindVertexArray(vertex_array_);
    glDrawElements(GL_TRIANGLES, indices_, GL_UNSIGNED_INT, nullptr);
    glBindVertexArray(0);
    glDisable(GL_DEPTH_TEST);
    glDisable(GL_CULL_FACE);
}

void SolidView::turn(double around, double up)
{
    around_degrees_ = std::fmod(around_degrees_ + around, 360);
    up_degrees_ = std::clamp(up_degrees_ + up, -90.0, 90.0);
    update();
}

void SolidView::mousePressEvent(QMouseEvent* event)
{
    last_ = event->position();
}

void SolidView::mouseMoveEvent(QMouseEvent* event)
{
    QPointF const by = event->position() - last_;
    last_ = event->position();
    turn(by.x() * 0.5, by.y() * 0.5);
}

void SolidView::wheelEvent(QWheelEvent* event)
{
    distance_ = std::clamp(distance_ * std::exp2(-event->angleDelta().y() / 480.0), 1.5, 12.0);
    update();
}

void SolidView::keyPressEvent(QKeyEvent* event)
{
    constexpr double kStep = 10;
    switch (event->key()) {
    case Qt::Key_Left:
        return turn(-kStep, 0);
    case Qt::Key_Right:
        return turn(kStep, 0);
    case Qt::Key_Up:
        return turn(0, -kStep);
    case Qt::Key_Down:
        return turn(0, kStep);
    case Qt::Key_Plus:
    case Qt::Key_Minus:
        distance_ = std::clamp(distance_ * (event->key() == Qt::Key_Plus ? 0.8 : 1.25), 1.5, 12.0);
        return update();
    default:
        QOpenGLWidget::keyPressEvent(event);
    }
}

} // namespace umbrix_desktop
