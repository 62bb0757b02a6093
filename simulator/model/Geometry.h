#ifndef TAVSIM_MODEL_GEOMETRY_H
#define TAVSIM_MODEL_GEOMETRY_H

#include <array>

namespace tavsim {

constexpr double kPi = 3.14159265358979323846;

inline double DegToRad(double degrees) { return degrees * kPi / 180.0; }
inline double RadToDeg(double radians) { return radians * 180.0 / kPi; }
// Maps an angle into (-pi, pi].
double WrapAngle(double radians);

struct Vec3 {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
};

Vec3 operator+(const Vec3& a, const Vec3& b);
Vec3 operator-(const Vec3& a, const Vec3& b);
Vec3 operator*(double s, const Vec3& v);
double Dot(const Vec3& a, const Vec3& b);
Vec3 Cross(const Vec3& a, const Vec3& b);
double Norm(const Vec3& v);

// Row-major 3x3 rotation matrix.
struct Mat3 {
  std::array<double, 9> m{1, 0, 0, 0, 1, 0, 0, 0, 1};

  double operator()(int row, int col) const { return m[static_cast<std::size_t>(row * 3 + col)]; }
  double& operator()(int row, int col) { return m[static_cast<std::size_t>(row * 3 + col)]; }
  Vec3 Column(int col) const { return {(*this)(0, col), (*this)(1, col), (*this)(2, col)}; }
  Mat3 Transposed() const;

  static Mat3 RotX(double radians);
  static Mat3 RotY(double radians);
  static Mat3 RotZ(double radians);
};

Mat3 operator*(const Mat3& a, const Mat3& b);
Vec3 operator*(const Mat3& a, const Vec3& v);
// Angle of the rotation that takes a to b, in [0, pi].
double RotationAngle(const Mat3& a, const Mat3& b);

// Rigid transform: p' = rotation * p + translation.
struct Transform {
  Mat3 rotation;
  Vec3 translation;

  Transform Inverse() const;
  Vec3 Apply(const Vec3& p) const { return rotation * p + translation; }
};

Transform operator*(const Transform& a, const Transform& b);

struct Quaternion {
  double w = 1.0;
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  static Quaternion FromMatrix(const Mat3& r);
  Mat3 ToMatrix() const;
};

// Shortest-arc spherical interpolation, u in [0, 1].
Quaternion Slerp(const Quaternion& a, const Quaternion& b, double u);

}  // namespace tavsim

#endif
