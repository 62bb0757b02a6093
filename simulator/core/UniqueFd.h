#ifndef TAVSIM_CORE_UNIQUEFD_H
#define TAVSIM_CORE_UNIQUEFD_H

namespace tavsim {

// Sole owner of a file descriptor; closes it when destroyed or reset. Movable, not copyable.
class UniqueFd {
public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : descriptor(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : descriptor(other.Release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept;
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd();

  int Get() const { return descriptor; }
  bool Valid() const { return descriptor >= 0; }
  int Release();
  void Reset(int fd = -1);

private:
  int descriptor = -1;
};

}  // namespace tavsim

#endif
