#ifndef TAVSIM_SERVER_STATEJSON_H
#define TAVSIM_SERVER_STATEJSON_H

#include <string>
#include <vector>

#include "model/ControllerSnapshot.h"
#include "server/ActivityFeed.h"

namespace tavsim {

// One line of JSON for the live view and for tools:
//   {"time": s, "mode": "Ready", "angles": [deg], "velocities": [deg/s], "currents": [A],
//    "released": [bool], "pose": {"x", "y", "z" (m), "roll", "pitch", "yaw" (rad)} or null,
//    "frames": [{"origin": [m], "x": [..], "z": [..]}] (base, then after each joint),
//    "inputs": [0|1], "outputs": [0|1], "gripper": {"closed": bool, "vacuum": bool},
//    "feed": [{"sequence": n, "kind": "command|refusal|fault|connection", "text": ".."}]}
std::string StateJson(const ControllerSnapshot& snapshot, const std::vector<ActivityEntry>& feed);

}  // namespace tavsim

#endif
