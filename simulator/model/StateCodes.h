#ifndef TAVSIM_MODEL_STATECODES_H
#define TAVSIM_MODEL_STATECODES_H

// Outcome codes the simulated controller puts in a reply's "state". Seven digits like the
// client library's own codes, but starting with 2 so the two families never collide.
namespace tavsim::StateCodes {
constexpr int kOk = 0;
constexpr int kUnknownCommand = 2001011;     // no such "function_name"
constexpr int kBadParameter = 2001021;       // a key is missing or its text does not parse or fit
constexpr int kUnknownMotor = 2001031;       // a motor or I/O channel id the controller lacks
constexpr int kUnreachable = 2001041;        // pose or path outside the workspace, joint range or
                                             // through a singularity
constexpr int kRefusedInState = 2001051;     // not allowed in the controller's current state
constexpr int kMotorReleased = 2001061;      // a move names a released (limp) motor
constexpr int kUnknownTool = 2001071;        // no such end-of-arm tool or action
constexpr int kMotionInterrupted = 2001081;  // a wait ended because the motion was halted
}  // namespace tavsim::StateCodes

#endif
