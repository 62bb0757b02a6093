#ifndef TAVDRIVER_JOINTNAMES_H
#define TAVDRIVER_JOINTNAMES_H

#include <string>
#include <vector>

namespace tavdriver {

// The joint names of one arm: motor id N is `<prefix>joint_N`, so several arms in one TF tree
// differ by their prefix.
class JointNames {
public:
  explicit JointNames(std::string jointPrefix);

  const std::string& Prefix() const { return prefix; }
  std::string Name(int motorId) const;
  std::vector<std::string> Names(const std::vector<int>& motorIds) const;

  // The motor ids of `names`, in their order. Fails with the reason for a name of another arm,
  // a motor the arm lacks (`known` lists the arm's ids) or a joint named twice.
  bool MotorIds(const std::vector<std::string>& names, const std::vector<int>& known,
                std::vector<int>& ids, std::string& reason) const;

private:
  std::string prefix;
};

}  // namespace tavdriver

#endif
