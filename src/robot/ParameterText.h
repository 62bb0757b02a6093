#ifndef TAVCLIENT_ROBOT_PARAMETERTEXT_H
#define TAVCLIENT_ROBOT_PARAMETERTEXT_H

#include <string>
#include <vector>

#include "Robot.h"

// The wire texts of command parameters. Integers are written as "%d", reals as "%f" (six
// digits after the point, no exponent); a list of n = 0 items is "[]" (or "{}").
namespace ParameterText {

std::string IdList(int id);                           // ["3"]
std::string IdList(unsigned long n, const int* ids);  // ["1","2"]
std::string IdList(const std::vector<int>& ids);
std::string IntList(int value);                                             // [5]
std::string IntList(unsigned long n, const int* values);                    // [1,0,1]
std::string SignalMap(int id, int value);                                   // {"3": 1}
std::string SignalMap(unsigned long n, const int* ids, const int* values);  // {"1": 0,"2": 1}
std::string RealList(double value);                                         // [1.500000]
std::string RealList(unsigned long n, const double* values);                // [0.000000,90.000000]
std::string Pose(const _Pose& pose);                        // [x,y,z,[roll,pitch,yaw]]
std::string PoseList(unsigned long n, const _Pose* poses);  // [[...],[...]]
std::string Real(float value);                              // 0.500000
std::string Integer(int value);                             // 7
// {"channel_name": "can0","channel_type": "can","protocol": "canopen","host_id": 1,...}
std::string SetupParameters(const Setup_Param& param);

}  // namespace ParameterText

#endif
