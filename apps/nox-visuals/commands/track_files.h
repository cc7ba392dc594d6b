// Many files, each into a file of lines of its own.
#ifndef NOX_VISUALS_COMMANDS_TRACK_FILES_H_
#define NOX_VISUALS_COMMANDS_TRACK_FILES_H_

#include <functional>
#include <string>
#include <vector>

#include "nox-visuals/commands/pen_stream.h"

namespace nox::app {

struct FilesToTrack {
  std::vector<std::string> files;
  std::string name;    // in place of the file's; empty: the file's
  std::string folder;  // where the lines go; made where it is not there
  bool again = false;  // those too that are done
};

// Writes FOLDER/NAME.jsonl for each file, NAME being the file's without its ending. A file of lines
// appears under this name when it is whole, so that it may be done twice at the same time, and one
// that is there is done already. A file that fails does not keep the others from being done; the
// exit status is the worst. Throws UsageError when two would go by the same name.
int track_files(const FilesToTrack &what,
                const std::function<PenStream(const std::string &file)> &make_pen_stream);

}  // namespace nox::app

#endif  // NOX_VISUALS_COMMANDS_TRACK_FILES_H_
