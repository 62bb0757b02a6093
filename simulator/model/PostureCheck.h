#ifndef TAVSIM_MODEL_POSTURECHECK_H
#define TAVSIM_MODEL_POSTURECHECK_H

#include "model/ArmKinematics.h"
#include "model/ArmLimits.h"

namespace tavsim {

// Whether the arm may stand in a posture: the tool and every joint origin above the floor, the
// elbow not folded onto the upper arm.
class PostureCheck {
public:
  PostureCheck(const ArmKinematics& armKinematics, const ArmLimits& armLimits);

  bool Allows(const ArmKinematics::Joints& radians) const;

private:
  const ArmKinematics& kinematics;
  ArmLimits limits;
};

}  // namespace tavsim

#endif
