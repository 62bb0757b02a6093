#ifndef TAVCLIENT_ROBOT_H
#define TAVCLIENT_ROBOT_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "client/Client.h"

// A tool pose. Position of the tool centre in metres, then its orientation as roll, pitch and
// yaw in radians (rotations about the fixed x, y and z axes). The controller receives the six
// values in exactly this order.
struct _Pose {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
};

// The controller's communication channel towards the motors. The texts are sent as given.
struct Setup_Param {
  const char* channel_name;
  const char* channel_type;
  const char* protocol;
  int host_id;
  int baud_rate;
};

// The values travel as integers; the controller relies on them.
enum class Setup_Mode : int { Real = 0, Virtual = 1 };
enum class Relative_Mode : int { Absolute = 0, Relative = 1 };
enum class Traj_Close_Mode : int { Open = 0, Closed = 1 };

// One session with the controller. Every command is one request/reply round trip and returns
// 0 on success, otherwise an event code: the session's sticky status (nothing is sent then),
// the reply time-out, or the controller's own "state" code. Queries write their outputs only
// when the result is 0; a reply value that is not a number throws std::invalid_argument or
// std::out_of_range to the caller, as does a pose reply with fewer than six values.
//
// Array outputs must have room for as many values as the controller returns, which may be
// more than were asked for. Reals in replies pass through single precision.
//
// Lifecycle: RobotLogin, Setup (learns the motor ids), commands, RobotLogout, destruction.
// Destroying a Robot that is still logged in blocks. Commands may run on several threads at
// once; the session operations (login, Setup, logout) must not overlap with commands.
class Robot : public Client {
public:
  Robot();
  ~Robot() override;

  // A short English text for any code a call returns; "unknown event N" for others.
  static const char* EventText(int code);

  // Session.
  int RobotLogin(const char* ip, short port);
  int RobotLogout();
  // Configures the channel, then refreshes the motor ids ("get_motor_ids").
  int Setup(const char* name, Setup_Param param, Setup_Mode mode);
  int _getMotorIds();
  // Copies the cached ids; never talks to the controller. Count 0 before a successful Setup.
  int get_motor_ids(size_t& count, int* ids);

  // Controller state.
  int recover();
  int stop();
  int calibrate();
  int reset();
  int Shutdown();  // asks the controller to finalize; the session stays open

  // Joint-space motion, positions in the controller's joint unit. Returns once the controller
  // has accepted or refused the move; wait_for_motors waits for its end.
  int move_to_angles(int motor_id, double position, float velocity, float acceleration,
                     Relative_Mode mode);
  int move_to_angles(unsigned long count, const int* motor_ids, const double* positions,
                     float velocity, float acceleration, Relative_Mode mode);

  // Cartesian motion. moveL takes n - 2 blend radii for a closed path, n for an open one.
  int moveJ(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
            Traj_Close_Mode closed);
  int moveL(unsigned long n, _Pose* points, const double* radius, float velocity,
            float acceleration, float interval, Traj_Close_Mode closed);
  int moveP(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
            Traj_Close_Mode closed);
  int move_to_pose(_Pose pose, float velocity, float acceleration, Relative_Mode mode);

  // Motors, outputs and tool. The forms without ids act on the cached motor ids.
  int hold(int motor_id);
  int hold(unsigned long count, const int* motor_ids);
  int hold();
  int release(int motor_id);
  int release(unsigned long count, const int* motor_ids);
  int release();
  int wait_for_motors(int motor_id);
  int wait_for_motors(unsigned long count, const int* motor_ids);
  int wait_for_motors();
  int set_output(int id, int signal);
  int set_output(unsigned long count, const int* ids, const int* signals);
  int set_EOAT_action(const char* name, const char* action);

  // State queries. The forms without ids ask for the cached motor ids.
  int get_current(int motor_id, double& value);
  int get_current(unsigned long count, const int* motor_ids, double* values);
  int get_current(double* values);
  int get_velocity(int motor_id, double& value);
  int get_velocity(unsigned long count, const int* motor_ids, double* values);
  int get_velocity(double* values);
  int get_angles(int motor_id, double& value);
  int get_angles(unsigned long count, const int* motor_ids, double* values);
  int get_angles(double* values);
  int get_input(int motor_id, int& value);
  int get_input(unsigned long count, const int* motor_ids, int* values);
  int get_input(int* values);
  int get_pose(_Pose& pose);

  // Kinematics, computed by the controller. forward reads one angle per cached motor id.
  int forward(const double* angles, _Pose& pose);
  int inverse(_Pose pose, double* angles);

  // Wire texts of the parameters. Each replaces `out` and returns 0.
  int to_SetupParamString(Setup_Param param, std::string& text);
  int to_IdString(int id, std::string& out);
  int to_IdString(unsigned long n, const int* ids, std::string& out);
  int to_IdString(std::vector<int> ids, std::string& out);
  int to_IntString(int v, std::string& out);
  int to_IntString(unsigned long n, const int* v, std::string& out);
  int to_SignalString(int id, int value, std::string& out);
  int to_SignalString(unsigned long n, const int* ids, const int* values, std::string& out);
  int to_DoubleString(double v, std::string& out);
  int to_DoubleString(unsigned long n, const double* v, std::string& out);
  int to_PoseString(_Pose pose, std::string& out);
  int to_PointString(unsigned long n, _Pose* poses, std::string& out);
  // Appends the pieces of `s` between occurrences of `sep`; a trailing separator adds no
  // empty piece, and an empty `sep` appends a non-empty `s` whole.
  int SplitString(const std::string& s, std::vector<std::string>& out, const std::string& sep);

private:
  // A command's own keys and their wire texts, in the order they are inserted.
  using Parameters = std::vector<std::pair<std::string, std::string>>;
  using Reply = std::map<std::string, std::string>;

  // The one request/reply pattern behind every command: returns the session's code, or the
  // controller's "state" code with the reply in `reply`. A reply without "state" reads as
  // state "", that is 0.
  int _roundTrip(const std::string& function_name, const Parameters& parameters, Reply& reply);
  int _command(const std::string& function_name, const Parameters& parameters = {});
  // Queries: the reply's "result1" cleaned of brackets and blanks (a reply without it reads as
  // an empty list), then read as one number, as a list or as a pose.
  int _queryText(const std::string& function_name, const Parameters& parameters,
                 std::string& cleaned);
  int _queryList(const std::string& function_name, const Parameters& parameters,
                 std::vector<std::string>& pieces);
  template <typename Number>
  int _queryValue(const std::string& function_name, const Parameters& parameters, Number& value);
  template <typename Number>
  int _queryValues(const std::string& function_name, const Parameters& parameters,
                   Number* values);
  int _queryPose(const std::string& function_name, const Parameters& parameters, _Pose& pose);

  // The keys of moveJ, moveL and moveP: the points, then the path's speeds and closure.
  static Parameters _pathParameters(unsigned long n, const _Pose* points, float velocity,
                                    float acceleration, float interval, Traj_Close_Mode closed);

  std::vector<int> motorIds;  // ascending, as the last motor discovery found them
  std::string clientId;       // empty until a login succeeds
};

#endif
