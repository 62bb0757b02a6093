#ifndef TAVSIM_CORE_UNIQUEFD_H
#define TAVSIM_CORE_UNIQUEFD_H

namespace tavsim {

// Sole owner of a file descriptor; closes it when destroyed or reset. Movable, not copyable.
class UniqueFd {
public:
  UniqueFd() = default;
  explicit UniqueFd(int fd) : fd_(fd) {}
  UniqueFd(UniqueFd&& other) noexcept : fd_(other.Release()) {}
  UniqueFd& operator=(UniqueFd&& other) noexcept;
  UniqueFd(const UniqueFd&) = delete;
  UniqueFd& operator=(const UniqueFd&) = delete;
  ~UniqueFd();

  int Get() const { return fd_; }
  bool Valid() const { return fd_ >= 0; }
  int Release();
  void Reset(int fd = -1);

private:
  int fd_ = -1;
};

}  // namespace tavsim

#endif
