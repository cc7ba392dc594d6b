#include "nox-visuals/commands/track_files.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <utility>

#include "nox-visuals/console.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/source_options.h"
#include "nox-visuals/outputs/json_lines.h"
#include "nox-visuals/outputs/output_error.h"
#include "nox-visuals/outputs/whole_file.h"
#include "nox-visuals/stream/signals.h"

namespace nox::app {
namespace {

struct Job {
  std::string file;
  std::string name;  // of the stream too: the same on whichever machine it is done
};

std::vector<Job> make_jobs(const FilesToTrack &what) {
  std::vector<Job> jobs;
  std::map<std::string, std::string> files;  // by name
  for (const std::string &file : what.files) {
    const std::string name =
        what.name.empty() ? as_name(std::filesystem::path(file).stem().string()) : what.name;
    if (name.empty()) throw UsageError(file + ": its name has no letter or digit; use --name");
    const auto [other, added] = files.emplace(name, file);
    if (!added && other->second != file) {
      throw UsageError(other->second + " and " + file + " would both go to " + name + ".jsonl");
    }
    if (added) jobs.push_back({file, name});
  }
  return jobs;
}

int track_file(const Job &job, const std::filesystem::path &path, PenStream it) {
  WholeFile lines(path);
  it.open_outputs = [&](bool /*live*/) {
    std::vector<std::unique_ptr<Output>> outputs;
    outputs.push_back(std::make_unique<JsonLines>(lines.descriptor(), path.string(), job.name));
    return outputs;
  };
  const int status = follow_pen(std::move(it));
  if (status == kDone && !stopped_by_signal()) lines.keep();
  return status;
}

}  // namespace

int track_files(const FilesToTrack &what,
                const std::function<PenStream(const std::string &file)> &make_pen_stream) {
  const std::vector<Job> jobs = make_jobs(what);
  std::error_code error;
  std::filesystem::create_directories(what.folder, error);
  if (error) throw OutputError(what.folder + ": " + error.message());
  int worst = kDone;
  for (const Job &job : jobs) {
    if (stopped_by_signal()) break;
    const auto path = std::filesystem::path(what.folder) / (job.name + ".jsonl");
    if (!what.again && std::filesystem::exists(path)) continue;
    try {
      worst = std::max(worst, track_file(job, path, make_pen_stream(job.file)));
    } catch (const StreamError &failure) {
      say(failure.what());
      worst = std::max<int>(worst, kStreamFailed);
    }
  }
  return worst;
}

}  // namespace nox::app
