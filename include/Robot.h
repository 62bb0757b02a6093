#ifndef TAVCLIENT_ROBOT_H
#define TAVCLIENT_ROBOT_H

#include <cstddef>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "client/Client.h"

/// A tool pose: the position of the tool centre in metres, then its orientation as roll, pitch
/// and yaw in radians, rotations about the fixed base axes x, then y, then z. The controller
/// receives the six values in exactly this order.
struct _Pose {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;
  double roll = 0.0;
  double pitch = 0.0;
  double yaw = 0.0;
};

/// The controller's communication channel towards the motors, e.g.
/// `{"can0", "can", "canopen", 1, 500000}`. The texts are sent as given.
struct Setup_Param {
  const char* channel_name;
  const char* channel_type;
  const char* protocol;
  int host_id;
  int baud_rate;  ///< bits per second
};

// The values travel as integers; the controller relies on them.
/// Whether Setup drives the real motors or the controller's own simulation of them.
enum class Setup_Mode : int { Real = 0, Virtual = 1 };
/// Absolute targets, or offsets from where the motors or the tool are now.
enum class Relative_Mode : int { Absolute = 0, Relative = 1 };
/// An open path ends at its last point; a closed one returns to its first.
enum class Traj_Close_Mode : int { Open = 0, Closed = 1 };

/// One session with one controller, for one arm.
///
/// **Results.** Every command is one request/reply round trip and returns 0 on success,
/// otherwise an event code; EventText() names every code. Besides the codes listed at each
/// command, any command may return:
/// - 1001011 before RobotLogin or after RobotLogout (nothing is sent), or when sending failed;
/// - 1002011 when the connection closed, or when RobotLogout on another thread ended the wait;
/// - 1003021 when a reply could not be read;
/// - 1003031 when no reply came within the reply time-out (SetReplyTimeout, default 3600 s);
///   the session stays usable;
/// - 1003041 when nothing at all arrived from the controller for the silence limit
///   (SetHeartbeat, default 20 s);
/// - 1006011 for a null pointer where values are read or written (an array may be null only
///   when its count is 0) and for a null text;
/// - 2002011 when the controller could not read the request, 2002021 when the request arrived
///   damaged (not run).
///
/// A transport failure (sending failed, the controller closed the connection, a reply could
/// not be read, the controller fell silent) or an error message from the controller (2002011)
/// is sticky: every later call returns the same code until the next RobotLogin. The controller's
/// answers to commands (2001xxx) and a reply time-out are not sticky.
///
/// **Waiting.** Every command blocks its caller until the controller's reply or a failure.
/// Moves return once the controller has accepted them, not when the arm arrives:
/// wait_for_motors() waits for that.
///
/// **Queries** write their outputs only when the result is 0. A reply value that is not a
/// number throws std::invalid_argument or std::out_of_range to the caller, as does a pose
/// reply with fewer than six values. Reals in replies pass through single precision
/// (about seven significant digits). The vector forms receive every value of the reply. The
/// pointer forms with a count write at most `count` values. The pointer forms without a count
/// write one value per cached motor id (as Setup found them, up to ten), so the caller's array
/// must hold that many: a `double[6]` overflows against a ten-motor controller. Prefer the
/// vector forms there. Extra reply values are ignored with one Warning line in the log.
///
/// **Threads.** Each Robot has its own connection and its own sender, receiver and heartbeat
/// threads; several Robots in one process drive several arms independently. Commands may
/// be called from several threads at once. RobotLogin, Setup and RobotLogout must not
/// overlap with commands, with one exception: RobotLogout from another thread is the way to
/// release calls that wait.
///
/// **Lifecycle:** RobotLogin, Setup (learns the motor ids), commands, RobotLogout. Destroying
/// a Robot that is still logged in logs it out locally (the connection is closed, nothing is
/// sent) and joins its threads.
///
/// Units, as the controller uses them: joint positions in degrees, joint speeds in degrees
/// per second (acceleration in degrees per second squared), tool positions in metres, tool
/// orientations in radians, tool speeds in metres per second (acceleration in metres per
/// second squared), currents in amperes, pauses in seconds.
class Robot : public Client {
public:
  /// Starts the session's threads; connects to nothing yet.
  Robot();
  /// Logs out locally if still logged in, then joins the session's threads.
  ~Robot() override;

  /// A short English text for any code a call returns: the library's own codes, the
  /// controller's, and "unknown event N" for others. Never null. The text of a known code is
  /// valid for the program's life; that of an unknown code lives in a buffer of the calling
  /// thread, valid until the same thread asks for another unknown code.
  static const char* EventText(int code);

  /// Sets the least level of record the library logs, for every Robot of the process: 0
  /// DEBUG (everything, the default), 1 INFO, 2 WARNING, 3 ERROR, 4 FATAL. Records below it are
  /// dropped before they are formatted. The environment variable TAVCLIENT_LOG_LEVEL, read when
  /// the library first logs, sets the same. Returns 0, or 1006011 for any other value, which
  /// keeps the current level.
  static int SetLogLevel(int level);

  // Session.

  /// Connects to the controller at `ip` (dotted IPv4 text) and TCP `port`, introduces the
  /// client and waits for the controller's verdict. Ports above 32767 are passed as
  /// `static_cast<short>(port)`. Codes: 1004011 (null or not an IPv4 address), 1004021
  /// (nobody accepts the connection), or the controller's refusal. A failure after the connect
  /// leaves the connection open; RobotLogout closes it.
  ///
  /// Every RobotLogin starts a fresh session, whatever ended the last one (a logout, a
  /// refusal, a failure, silence): the old connection is closed, its sticky code cleared and
  /// whatever it left behind dropped; the motor ids are forgotten until the next Setup. So a
  /// retry loop on one Robot reconnects as soon as the controller is back:
  /// `while (robot.RobotLogin(ip, port) != 0) sleep(1);`
  int RobotLogin(const char* ip, short port);
  /// The heartbeat and its watchdog, in seconds: while logged in a heartbeat goes out every
  /// `period_seconds` (9 by default), and once nothing at all has arrived from the controller
  /// for `silence_limit_seconds` (20 by default) the session fails with 1003041, which every
  /// waiting call returns at once. A controller busy with a long command still answers
  /// heartbeats and is never failed. The period applies from the next heartbeat, the limit at
  /// once. Codes: 1006011 (a value not positive or not finite, or a limit not above the
  /// period; the previous values are kept).
  using Client::SetHeartbeat;
  /// Closes the connection without sending anything and releases every call still waiting
  /// (they return 1002011). Always 0. The cached motor ids are kept.
  int RobotLogout();
  /// Configures the controller's channel towards the motors ("Robot"; `name` is the robot's
  /// name on the controller, `mode` real or simulated motors), then refreshes the cached motor
  /// ids. The first Setup powers and holds every motor; until it, the controller refuses the
  /// other commands, Shutdown aside, with 2001051. Codes: 2001021 (a parameter it cannot
  /// read).
  int Setup(const char* name, Setup_Param param, Setup_Mode mode);
  /// Asks the controller for its motor ids and caches them (ids 1..n, at most 10). On a
  /// failure the cache keeps the ids of the last successful discovery.
  int _getMotorIds();
  /// The cached motor ids, without asking the controller; none before a successful Setup.
  /// The pointer form sets `count` to their number and needs room for all of them. Always 0.
  /// @{
  int get_motor_ids(size_t& count, int* ids);
  int get_motor_ids(std::vector<int>& ids);
  /// @}

  // Controller state. None of these moves anything; before the first Setup all but Shutdown
  // return 2001051.

  /// Leaves the stopped state: moves are accepted again.
  int recover();
  /// Halts every motion where the arm is and enters the stopped state, which refuses moves
  /// (2001051) until recover, reset or calibrate. A pending wait_for_motors on the halted
  /// motors returns 2001081.
  int stop();
  /// Holds every motor and makes the controller ready. Only with the arm at rest (2001051
  /// while any motor moves).
  int calibrate();
  /// Halts every motion, clears the outputs, frees the tools, holds every motor and makes the
  /// controller ready.
  int reset();
  /// Asks the controller to finalize ("finalize"): every motion halts, every motor is
  /// released, and the controller needs a new Setup. The session stays open.
  int Shutdown();

  // Joint-space motion.

  /// Moves joints to `position` (degrees; with Relative_Mode::Relative, offsets from where
  /// they are) in one synchronised move. The joint with the longest way reaches `velocity`
  /// (degrees per second, > 0) with `acceleration` (degrees per second squared, > 0), the
  /// others are scaled to arrive with it. Returns once the controller has accepted the move;
  /// wait_for_motors waits for its end. A new move takes over the motors it names from
  /// wherever they are. Codes: 2001021 (velocity or acceleration not above 0, a motor named
  /// twice), 2001031 (unknown motor), 2001041 (a target beyond ±360°), 2001051 (stopped),
  /// 2001061 (a released motor).
  /// @{
  int move_to_angles(int motor_id, double position, float velocity, float acceleration,
                     Relative_Mode mode);
  int move_to_angles(unsigned long count, const int* motor_ids, const double* positions,
                     float velocity, float acceleration, Relative_Mode mode);
  /// @}

  // Cartesian motion. The tool through poses (metres and radians); the arm, motors 1 to 6,
  // moves together and motors beyond the sixth are not touched.

  /// Joint moves through the `n` points. Each point is solved by inverse kinematics (nearest
  /// to the previous one) and reached by a synchronised joint move; the arm stops at each.
  /// `velocity` and `acceleration` are joint values (degrees per second, and squared; > 0).
  /// `interval` is a pause in seconds (>= 0) at every point where the arm comes to rest; a
  /// Closed path ends back at its first point. Returns once the controller has accepted and
  /// planned the whole motion; wait_for_motors waits for its end. Codes: 2001021 (speed not
  /// above 0, negative interval), 2001031 (fewer than six motors), 2001041 (a point out of
  /// reach or beyond ±360°: nothing moves), 2001051 (stopped), 2001061 (a released joint).
  int moveJ(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
            Traj_Close_Mode closed);
  /// Straight tool lines through the `n` points, at a tool `velocity` in metres per second and
  /// `acceleration` in metres per second squared. `radius` (metres, >= 0) rounds the corner
  /// at each point: `n` radii for an open path, `n - 2` for a closed one; a corner without a
  /// radius is a stop. A closed path of fewer than 2 points is refused with 1006011 and nothing
  /// is sent. Otherwise as moveJ, and 2001041 also when a piece of the way is out of reach or
  /// passes a singularity.
  int moveL(unsigned long n, _Pose* points, const double* radius, float velocity,
            float acceleration, float interval, Traj_Close_Mode closed);
  /// As moveL, with every corner rounded by a fifth of its shorter leg.
  int moveP(unsigned long n, _Pose* points, float velocity, float acceleration, float interval,
            Traj_Close_Mode closed);
  /// One straight tool line to `pose` ("move_to_position"), at a tool `velocity` in metres per
  /// second and `acceleration` in metres per second squared. Relative_Mode::Relative shifts
  /// the position and turns the orientation by `pose`, both in the base frame. Returns and
  /// fails as moveL.
  int move_to_pose(_Pose pose, float velocity, float acceleration, Relative_Mode mode);

  // Motors, outputs and tool. The forms without ids act on the cached motor ids (none before
  // Setup).

  /// Powers motors: a released motor becomes stiff where it stands. Halts any motion of the
  /// named motors. Codes: 2001031 (unknown motor).
  /// @{
  int hold(int motor_id);
  int hold(unsigned long count, const int* motor_ids);
  int hold();
  /// @}
  /// Releases motors: drive off, no current, no targets; a move naming one returns 2001061
  /// until hold. Halts any motion of the named motors. Codes: 2001031 (unknown motor).
  /// @{
  int release(int motor_id);
  int release(unsigned long count, const int* motor_ids);
  int release();
  /// @}
  /// Blocks until none of the named motors moves any more. Bounded by the reply time-out like
  /// every call. Codes: 2001081 (the motion was halted by stop, hold, release, reset or
  /// Shutdown; the arm stands where it was halted), 2001031 (unknown motor).
  /// @{
  int wait_for_motors(int motor_id);
  int wait_for_motors(unsigned long count, const int* motor_ids);
  int wait_for_motors();
  /// @}
  /// Sets digital outputs: `signal` 0 or 1 for output `id` (1 to 8 on the simulator, whose
  /// outputs are wired back to inputs 1 to 8). Codes: 2001021 (a signal other than 0 or 1),
  /// 2001031 (unknown output).
  /// @{
  int set_output(int id, int signal);
  int set_output(unsigned long count, const int* ids, const int* signals);
  /// @}
  /// Starts an end-of-arm-tool action and returns without waiting for it to finish. On the
  /// simulator: "gripper" with "close" (0.5 s, then input 9 reads 1) or "open", and "vacuum"
  /// with "on" (0.2 s, then input 10 reads 1) or "off". Neither text may be null. Codes:
  /// 2001071 (unknown tool or action).
  int set_EOAT_action(const char* name, const char* action);

  // State queries, in three forms each: one motor (its value in `value`), `count` motors, and
  // the cached motor ids (one value per id); the last two with a pointer and a vector form,
  // as the class notes tell.

  /// Motor currents in amperes; a released motor draws none. The forms with ids send the same
  /// request as get_angles with ids, which the simulator answers with joint angles in
  /// degrees: for currents of chosen motors, ask one motor at a time. Codes: 2001031 (unknown
  /// motor).
  /// @{
  int get_current(int motor_id, double& value);
  int get_current(unsigned long count, const int* motor_ids, double* values);
  int get_current(unsigned long count, const int* motor_ids, std::vector<double>& values);
  int get_current(double* values);
  int get_current(std::vector<double>& values);
  /// @}
  /// Joint speeds in degrees per second. Codes: 2001031 (unknown motor).
  /// @{
  int get_velocity(int motor_id, double& value);
  int get_velocity(unsigned long count, const int* motor_ids, double* values);
  int get_velocity(unsigned long count, const int* motor_ids, std::vector<double>& values);
  int get_velocity(double* values);
  int get_velocity(std::vector<double>& values);
  /// @}
  /// Joint positions in degrees, also while moving. Codes: 2001031 (unknown motor).
  /// @{
  int get_angles(int motor_id, double& value);
  int get_angles(unsigned long count, const int* motor_ids, double* values);
  int get_angles(unsigned long count, const int* motor_ids, std::vector<double>& values);
  int get_angles(double* values);
  int get_angles(std::vector<double>& values);
  /// @}
  /// Digital inputs, 0 or 1, by input id in place of the motor id. On the simulator inputs 1
  /// to 8 follow outputs 1 to 8, 9 is the gripper's "closed" sensor and 10 the vacuum's
  /// "holding" sensor. The forms without ids ask for the inputs numbered like the cached
  /// motor ids. Codes: 2001031 (unknown input).
  /// @{
  int get_input(int motor_id, int& value);
  int get_input(unsigned long count, const int* motor_ids, int* values);
  int get_input(unsigned long count, const int* motor_ids, std::vector<int>& values);
  int get_input(int* values);
  int get_input(std::vector<int>& values);
  /// @}
  /// The tool pose where the arm is now ("get_position"). Codes: 2001031 (fewer than six
  /// motors).
  int get_pose(_Pose& pose);

  // Kinematics, computed by the controller; nothing moves.

  /// The tool pose for joint `angles` in degrees. One angle is read per cached motor id and
  /// the controller uses the first six. Codes: 2001021 (fewer than six angles, as before any
  /// Setup), 2001031 (fewer than six motors).
  int forward(const double* angles, _Pose& pose);
  /// Joint angles in degrees that reach `pose`: of the possible solutions the one nearest to
  /// where the joints are now, then the auxiliary axes beyond the sixth where they stand. The
  /// pointer form writes at most one angle per cached motor id (six before any Setup). Codes:
  /// 2001031 (fewer than six motors), 2001041 (out of reach or beyond ±360°).
  /// @{
  int inverse(_Pose pose, double* angles);
  int inverse(_Pose pose, std::vector<double>& angles);
  /// @}

  /// The controller's text forms of the parameters. Each replaces `out` and returns 0.
  /// @{
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
  /// @}
  /// Appends the pieces of `s` between occurrences of `sep`. A trailing separator adds no
  /// empty piece, and an empty `sep` appends a non-empty `s` whole.
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
                   std::vector<Number>& values);
  // At most `capacity` values are written.
  template <typename Number>
  int _queryValues(const std::string& function_name, const Parameters& parameters, Number* values,
                   size_t capacity);
  int _queryPose(const std::string& function_name, const Parameters& parameters, _Pose& pose);

  // The keys of moveJ, moveL and moveP: the points, then the path's speeds and closure.
  static Parameters _pathParameters(unsigned long n, const _Pose* points, float velocity,
                                    float acceleration, float interval, Traj_Close_Mode closed);

  std::vector<int> motorIds;  // ascending, as the last motor discovery found them
  std::string clientId;       // empty until a login succeeds
};

#endif
