#ifndef TAVSIM_MODEL_RESULTTEXT_H
#define TAVSIM_MODEL_RESULTTEXT_H

#include <string>
#include <vector>

#include "model/Pose.h"

namespace tavsim {

// Result texts in the form the client cleans and splits: "[a,b,c]".
// Joint values, velocities and currents with six decimals ("%.6f").
std::string FixedList(const std::vector<double>& values);
std::string IntegerList(const std::vector<int>& values);
// x, y, z, roll, pitch, yaw with nine significant digits ("%.9g"): metres need more than six
// decimals to survive a forward/inverse round trip.
std::string PoseList(const Pose& pose);
std::string StateText(int code);

}  // namespace tavsim

#endif
