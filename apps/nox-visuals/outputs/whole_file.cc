#include "nox-visuals/outputs/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

#include "nox-visuals/outputs/output_error.h"

namespace nox::app {
namespace {

[[noreturn]] void fail(const std::filesystem::path &path) {
  throw OutputError(path.string() + ": " + std::strerror(errno));
}

// Machines that share a folder may have processes of the same number.
std::string scratch_name(const std::filesystem::path &path) {
  char host[256] = "";
  gethostname(host, sizeof host - 1);
  return path.parent_path() /
         ("." + path.filename().string() + "." + host + "." + std::to_string(getpid()) + ".part");
}

// A name in a folder is on the disk when the folder is.
void sync_folder(const std::filesystem::path &folder) {
  const int descriptor = open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (descriptor < 0) return;
  fsync(descriptor);
  close(descriptor);
}

}  // namespace

WholeFile::WholeFile(std::filesystem::path path)
    : path_(std::move(path)), scratch_(scratch_name(path_)) {
  constexpr mode_t kForAll = 0666;  // less what the umask takes away
  descriptor_ = open(scratch_.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, kForAll);
  if (descriptor_ < 0) fail(path_);
}

WholeFile::~WholeFile() {
  if (descriptor_ < 0) return;
  close(descriptor_);
  unlink(scratch_.c_str());
}

void WholeFile::keep() {
  // Some file systems tell of a full disk only here.
  if (fsync(descriptor_) != 0 && errno != EINVAL) fail(path_);
  if (close(std::exchange(descriptor_, -1)) != 0 ||
      std::rename(scratch_.c_str(), path_.c_str()) != 0) {
    const int error = errno;
    unlink(scratch_.c_str());
    errno = error;
    fail(path_);
  }
  sync_folder(path_.parent_path());
}

}  // namespace nox::app
