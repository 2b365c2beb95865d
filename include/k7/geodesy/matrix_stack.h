// K7MatrixStack, the abstract matrix stack of a graphics context, and K7MatrixStackK7, the library's own.
#pragma once

#include <k7/export.h>
#include <k7/geodesy/matrix.h>

/// Which stack the operations of a matrix stack work on. The values are those of a larger family of settings,
/// of which 0 to 6 choose no stack.
enum K7MatrixMode : int {
  K7_MATRIX_MODELVIEW = 7,
  K7_MATRIX_PROJECTION = 8,
  K7_MATRIX_TEXTURE = 9,
};

/// The matrix state of a fixed-function pipeline. Results are 0 or a negative error code. Arguments are those
/// of K7Matrix4x4; every builder works on the top matrix of the current mode's stack.
class K7_API K7MatrixStack {
 public:
  virtual ~K7MatrixStack();
  virtual int Frustum(double left, double right, double bottom, double top, double zNear, double zFar) = 0;
  virtual int Identity() = 0;
  /// Three numbers each.
  virtual int LookAt(double* eye, double* centre, double* up) = 0;
  virtual int MatrixMode(K7MatrixMode mode) = 0;
  virtual int Ortho(double left, double right, double bottom, double top, double zNear, double zFar) = 0;
  virtual int Perspective(double fovy, double aspect, double zNear, double zFar) = 0;
  virtual int PopMatrix() = 0;
  virtual int PushMatrix() = 0;
  virtual int Rotate(double angle, double x, double y, double z) = 0;
  virtual int Scale(double x, double y, double z) = 0;
  virtual int Translate(double x, double y, double z) = 0;
  /// Projection x model-view of the two tops: sixteen numbers in column-major order, valid until the next
  /// call.
  virtual double* GetModelviewProjectionMatrix() = 0;
};

/// A matrix stack in memory, with which a software graphics context carries out what projections ask of it.
/// Starts in model-view mode with an identity at the foot of every stack. Every failure is
/// K7_ERR_OUT_OF_RANGE and changes nothing. Not locked: one stack, one thread.
class K7_API K7MatrixStackK7 : public K7MatrixStack {
 public:
  static constexpr int MODELVIEW_STACK_DEPTH = 24;
  static constexpr int PROJECTION_STACK_DEPTH = 4;
  static constexpr int TEXTURE_STACK_DEPTH = 4;

  K7MatrixStackK7();
  ~K7MatrixStackK7() override;
  int Frustum(double left, double right, double bottom, double top, double zNear, double zFar) override;
  int Identity() override;
  int LookAt(double* eye, double* centre, double* up) override;
  /// 0 to 6 are taken and choose no stack: what works on a stack then fails until a mode is set that has one.
  int MatrixMode(K7MatrixMode mode) override;
  int Ortho(double left, double right, double bottom, double top, double zNear, double zFar) override;
  int Perspective(double fovy, double aspect, double zNear, double zFar) override;
  /// Fails at the foot of the stack.
  int PopMatrix() override;
  /// Fails when the stack is full.
  int PushMatrix() override;
  int Rotate(double angle, double x, double y, double z) override;
  int Scale(double x, double y, double z) override;
  /// By exactly nothing it succeeds at once, in every mode.
  int Translate(double x, double y, double z) override;
  double* GetModelviewProjectionMatrix() override;

  /// Copies of the tops.
  int GetModelMatrix(K7Matrix4x4& out) const;
  int GetProjectionMatrix(K7Matrix4x4& out) const;
  int GetTextureMatrix(K7Matrix4x4& out) const;

 private:
  struct Stack {
    K7Matrix4x4* matrices = nullptr;
    int* top = nullptr;
    int depth = 0;
  };

  Stack Current();
  K7Matrix4x4* Top();

  K7MatrixMode m_mode = K7_MATRIX_MODELVIEW;
  int m_modelviewTop = 0;
  int m_projectionTop = 0;
  int m_textureTop = 0;
  K7Matrix4x4 m_modelview[MODELVIEW_STACK_DEPTH];
  K7Matrix4x4 m_projection[MODELVIEW_STACK_DEPTH];
  K7Matrix4x4 m_texture[MODELVIEW_STACK_DEPTH];
  K7Matrix4x4 m_modelviewProjection;
};
