#ifndef TAVSIM_MODEL_PARAMREADER_H
#define TAVSIM_MODEL_PARAMREADER_H

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "model/Pose.h"
#include "model/TextValue.h"

namespace tavsim {

using Params = std::map<std::string, std::string>;

// Typed views of a command's parameter texts. Every reader returns false when the key is
// missing or its text is not of the expected form, and `out` may then hold anything.
class ParamReader {
public:
  explicit ParamReader(const Params& texts) : params(texts) {}

  bool Text(const char* key, std::string& out) const;
  bool Real(const char* key, double& out) const;
  // A real > 0, as speeds and accelerations must be.
  bool Positive(const char* key, double& out) const;
  bool Integer(const char* key, int& out) const;
  // An integer that is 0 or 1 (relative, closed, block, virtual).
  bool Flag(const char* key, bool& out) const;
  // `["1","2"]`; bare integers are accepted too.
  bool Ids(const char* key, std::vector<int>& out) const;
  bool Reals(const char* key, std::vector<double>& out) const;
  // `{"1": 0,"2": 1}` as (channel, value) pairs in written order.
  bool Signals(const char* key, std::vector<std::pair<int, int>>& out) const;
  // `[x,y,z,[roll,pitch,yaw]]`, or the six numbers flat.
  bool SinglePose(const char* key, Pose& out) const;
  // A list of poses: `[[...,[...]],[...]]`.
  bool Poses(const char* key, std::vector<Pose>& out) const;
  // Any `{...}` object, such as the set-up parameter line.
  bool Object(const char* key) const;

private:
  const std::string* _find(const char* key) const;
  // A bare number text read by `parse`.
  template <typename T>
  bool _bare(const char* key, T& out, std::optional<T> (*parse)(std::string_view)) const;
  std::optional<TextValue> _value(const char* key) const;

  const Params& params;
};

}  // namespace tavsim

#endif
