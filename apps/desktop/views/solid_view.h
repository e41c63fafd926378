// SPDX-License-Identifier: MIT
#pragma once

#include "document/state.h"
#include "views/shown.h"
#include "views/solid_mesh.h"

#include <QOpenGLFunctions_3_3_Core>
#include <QOpenGLWidget>
#include <array>

namespace umbrix_desktop {

/// An Umbrix map on a body, in a light, drawn by the graphics processor with the shader that users get for
/// their engines. The body is turned by dragging and brought nearer by the wheel.
class SolidView : public QOpenGLWidget, protected QOpenGLFunctions_3_3_Core {
    Q_OBJECT

public:
    /// @param shown What there is to be seen; it outlives the view.
    explicit SolidView(Shown const& shown, QWidget* parent = nullptr);
    ~SolidView() override;

    void set_solid(Solid solid);
    void set_lighting(Lighting const& lighting, Modes mode);

    /// Times that the map is repeated each way.
    void set_tiles(int tiles);

    /// There is another map to be seen.
    void renew();

    QSize sizeHint() const override { return {320, 280}; }

    /// The format that the view needs, to be the default one before the first window is made.
    static QSurfaceFormat needed_format();

Q_SIGNALS:
    /// OpenGL cannot be used, for that reason. Told once; nothing is ever drawn then.
    void unusable(QString const& reason);

protected:
    void initializeGL() override;
    void paintGL() override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    QString make_program();
    void give_up(QString const& reason);
    void release();
    void upload_mesh();
    void upload_map();
    void turn(double around, double up);
    unsigned compiled(unsigned kind, char const* text, QString& fault);

    Shown const& shown_;
    Solid solid_ = Solid::kSphere;
    Lighting lighting_;
    Modes mode_ = Modes_Projection;
    int tiles_ = 1;
    double around_degrees_ = 0;
    double up_degrees_ = 20;
    double distance_ = 4;
    QPointF last_;
    bool usable_ = false;
    bool mesh_is_new_ = true;
    bool map_is_new_ = true;
    int indices_ = 0;
    unsigned program_ = 0;
    unsigned texture_ = 0;
    unsigned vertex_array_ = 0;
    std::array<unsigned, 2> buffers_{};
};

} // namespace umbrix_desktop
