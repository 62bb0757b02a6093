#include "model/Geometry.h"

#include <algorithm>
#include <cmath>

namespace tavsim {

double WrapAngle(double radians) {
  double wrapped = std::remainder(radians, 2.0 * kPi);
  return wrapped <= -kPi ? wrapped + 2.0 * kPi : wrapped;
}

Vec3 operator+(const Vec3& a, const Vec3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec3 operator-(const Vec3& a, const Vec3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec3 operator*(double s, const Vec3& v) { return {s * v.x, s * v.y, s * v.z}; }
double Dot(const Vec3& a, const Vec3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec3 Cross(const Vec3& a, const Vec3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
double Norm(const Vec3& v) { return std::sqrt(Dot(v, v)); }

Mat3 Mat3::Transposed() const {
  Mat3 t;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      t(r, c) = (*this)(c, r);
    }
  }
  return t;
}

Mat3 Mat3::RotX(double radians) {
  double c = std::cos(radians);
  double s = std::sin(radians);
  return Mat3{{1, 0, 0, 0, c, -s, 0, s, c}};
}

Mat3 Mat3::RotY(double radians) {
  double c = std::cos(radians);
  double s = std::sin(radians);
  return Mat3{{c, 0, s, 0, 1, 0, -s, 0, c}};
}

Mat3 Mat3::RotZ(double radians) {
  double c = std::cos(radians);
  double s = std::sin(radians);
  return Mat3{{c, -s, 0, s, c, 0, 0, 0, 1}};
}

Mat3 operator*(const Mat3& a, const Mat3& b) {
  Mat3 p;
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) {
      p(r, c) = a(r, 0) * b(0, c) + a(r, 1) * b(1, c) + a(r, 2) * b(2, c);
    }
  }
  return p;
}

Vec3 operator*(const Mat3& a, const Vec3& v) {
  return {a(0, 0) * v.x + a(0, 1) * v.y + a(0, 2) * v.z,
          a(1, 0) * v.x + a(1, 1) * v.y + a(1, 2) * v.z,
          a(2, 0) * v.x + a(2, 1) * v.y + a(2, 2) * v.z};
}

double RotationAngle(const Mat3& a, const Mat3& b) {
  Mat3 d = a.Transposed() * b;
  double cosine = (d(0, 0) + d(1, 1) + d(2, 2) - 1.0) / 2.0;
  return std::acos(std::clamp(cosine, -1.0, 1.0));
}

Transform Transform::Inverse() const {
  Mat3 rt = rotation.Transposed();
  return {rt, -1.0 * (rt * translation)};
}

Transform operator*(const Transform& a, const Transform& b) {
  return {a.rotation * b.rotation, a.rotation * b.translation + a.translation};
}

Quaternion Quaternion::FromMatrix(const Mat3& r) {
  // Branch on the largest diagonal term to keep the square root well away from zero.
  Quaternion q;
  double trace = r(0, 0) + r(1, 1) + r(2, 2);
  if (trace > 0.0) {
    double s = 2.0 * std::sqrt(trace + 1.0);
    q = {0.25 * s, (r(2, 1) - r(1, 2)) / s, (r(0, 2) - r(2, 0)) / s, (r(1, 0) - r(0, 1)) / s};
  } else if (r(0, 0) > r(1, 1) && r(0, 0) > r(2, 2)) {
    double s = 2.0 * std::sqrt(1.0 + r(0, 0) - r(1, 1) - r(2, 2));
    q = {(r(2, 1) - r(1, 2)) / s, 0.25 * s, (r(0, 1) + r(1, 0)) / s, (r(0, 2) + r(2, 0)) / s};
  } else if (r(1, 1) > r(2, 2)) {
    double s = 2.0 * std::sqrt(1.0 + r(1, 1) - r(0, 0) - r(2, 2));
    q = {(r(0, 2) - r(2, 0)) / s, (r(0, 1) + r(1, 0)) / s, 0.25 * s, (r(1, 2) + r(2, 1)) / s};
  } else {
    double s = 2.0 * std::sqrt(1.0 + r(2, 2) - r(0, 0) - r(1, 1));
    q = {(r(1, 0) - r(0, 1)) / s, (r(0, 2) + r(2, 0)) / s, (r(1, 2) + r(2, 1)) / s, 0.25 * s};
  }
  return q;
}

Mat3 Quaternion::ToMatrix() const {
  return Mat3{{1 - 2 * (y * y + z * z), 2 * (x * y - w * z), 2 * (x * z + w * y),
               2 * (x * y + w * z), 1 - 2 * (x * x + z * z), 2 * (y * z - w * x),
               2 * (x * z - w * y), 2 * (y * z + w * x), 1 - 2 * (x * x + y * y)}};
}

Quaternion Slerp(const Quaternion& a, const Quaternion& b, double u) {
  double cosine = a.w * b.w + a.x * b.x + a.y * b.y + a.z * b.z;
  Quaternion target = b;
  if (cosine < 0.0) {
    cosine = -cosine;
    target = {-b.w, -b.x, -b.y, -b.z};
  }
  double wa = 1.0 - u;
  double wb = u;
  if (cosine < 0.9995) {
    double angle = std::acos(cosine);
    double sine = std::sin(angle);
    wa = std::sin((1.0 - u) * angle) / sine;
    wb = std::sin(u * angle) / sine;
  }
  Quaternion q{wa * a.w + wb * target.w, wa * a.x + wb * target.x, wa * a.y + wb * target.y,
               wa * a.z + wb * target.z};
  double length = std::sqrt(q.w * q.w + q.x * q.x + q.y * q.y + q.z * q.z);
  return {q.w / length, q.x / length, q.y / length, q.z / length};
}

}  // namespace tavsim
