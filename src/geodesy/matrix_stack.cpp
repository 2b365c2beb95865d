#include <k7/geodesy/matrix_stack.h>

#include <k7/foundation/error_string.h>

K7MatrixStack::~K7MatrixStack() = default;

K7MatrixStackK7::K7MatrixStackK7() {
  m_modelview[0].Identity();
  m_projection[0].Identity();
  m_texture[0].Identity();
}

K7MatrixStackK7::~K7MatrixStackK7() = default;

K7MatrixStackK7::Stack K7MatrixStackK7::Current() {
  switch (m_mode) {
    case K7_MATRIX_MODELVIEW:
      return {m_modelview, &m_modelviewTop, MODELVIEW_STACK_DEPTH};
    case K7_MATRIX_PROJECTION:
      return {m_projection, &m_projectionTop, PROJECTION_STACK_DEPTH};
    case K7_MATRIX_TEXTURE:
      return {m_texture, &m_textureTop, TEXTURE_STACK_DEPTH};
  }
  return {};
}

K7Matrix4x4* K7MatrixStackK7::Top() {
  const Stack stack = Current();
  return stack.matrices ? stack.matrices + *stack.top : nullptr;
}

int K7MatrixStackK7::Frustum(double left, double right, double bottom, double top, double zNear,
                             double zFar) {
  K7Matrix4x4* const m = Top();
  return m ? m->Frustum(left, right, bottom, top, zNear, zFar) : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::Identity() {
  K7Matrix4x4* const m = Top();
  return m ? m->Identity() : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::LookAt(double* eye, double* centre, double* up) {
  K7Matrix4x4* const m = Top();
  if (!m || !eye || !centre || !up) return K7_ERR_OUT_OF_RANGE;
  const K7Vector3 from(eye[0], eye[1], eye[2]);
  const K7Vector3 to(centre[0], centre[1], centre[2]);
  const K7Vector3 upright(up[0], up[1], up[2]);
  return m->LookAt(&from, &to, &upright);
}

int K7MatrixStackK7::MatrixMode(K7MatrixMode mode) {
  if (mode < 0 || mode > K7_MATRIX_TEXTURE) return K7_ERR_OUT_OF_RANGE;
  m_mode = mode;
  return K7_OK;
}

int K7MatrixStackK7::Ortho(double left, double right, double bottom, double top, double zNear, double zFar) {
  K7Matrix4x4* const m = Top();
  return m ? m->Ortho(left, right, bottom, top, zNear, zFar) : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::Perspective(double fovy, double aspect, double zNear, double zFar) {
  K7Matrix4x4* const m = Top();
  return m ? m->Perspective(fovy, aspect, zNear, zFar) : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::PopMatrix() {
  const Stack stack = Current();
  if (!stack.matrices || *stack.top == 0) return K7_ERR_OUT_OF_RANGE;
  --*stack.top;
  return K7_OK;
}

int K7MatrixStackK7::PushMatrix() {
  const Stack stack = Current();
  if (!stack.matrices || *stack.top >= stack.depth - 1) return K7_ERR_OUT_OF_RANGE;
  stack.matrices[*stack.top + 1] = stack.matrices[*stack.top];
  ++*stack.top;
  return K7_OK;
}

int K7MatrixStackK7::Rotate(double angle, double x, double y, double z) {
  K7Matrix4x4* const m = Top();
  return m ? m->Rotate(angle, x, y, z) : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::Scale(double x, double y, double z) {
  K7Matrix4x4* const m = Top();
  return m ? m->Scale(x, y, z) : K7_ERR_OUT_OF_RANGE;
}

int K7MatrixStackK7::Translate(double x, double y, double z) {
  if (x == 0 && y == 0 && z == 0) return K7_OK;
  K7Matrix4x4* const m = Top();
  return m ? m->Translate(x, y, z) : K7_ERR_OUT_OF_RANGE;
}

double* K7MatrixStackK7::GetModelviewProjectionMatrix() {
  m_modelviewProjection = m_projection[m_projectionTop] * m_modelview[m_modelviewTop];
  return m_modelviewProjection.ToArray();
}

int K7MatrixStackK7::GetModelMatrix(K7Matrix4x4& out) const {
  out = m_modelview[m_modelviewTop];
  return K7_OK;
}

int K7MatrixStackK7::GetProjectionMatrix(K7Matrix4x4& out) const {
  out = m_projection[m_projectionTop];
  return K7_OK;
}

int K7MatrixStackK7::GetTextureMatrix(K7Matrix4x4& out) const {
  out = m_texture[m_textureTop];
  return K7_OK;
}
