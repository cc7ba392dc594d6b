// A file that appears under its name when it is whole.
#ifndef NOX_VISUALS_OUTPUTS_WHOLE_FILE_H_
#define NOX_VISUALS_OUTPUTS_WHOLE_FILE_H_

#include <filesystem>

namespace nox::app {

class WholeFile {
 public:
  // Opens a file beside `path` under a name that no other process uses. Throws OutputError.
  explicit WholeFile(std::filesystem::path path);
  // Removes what was not kept.
  ~WholeFile();
  WholeFile(const WholeFile &) = delete;
  WholeFile &operator=(const WholeFile &) = delete;

  int descriptor() const { return descriptor_; }

  // Gives the file its name, once its content is on the disk. Throws OutputError.
  void keep();

 private:
  std::filesystem::path path_;
  std::string scratch_;
  int descriptor_ = -1;
};

}  // namespace nox::app

#endif  // NOX_VISUALS_OUTPUTS_WHOLE_FILE_H_
