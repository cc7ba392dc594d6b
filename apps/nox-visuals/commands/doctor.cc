// nox-visuals doctor: looks at what people stumble over, and changes nothing.
#include <algorithm>
#include <iostream>
#include <memory>
#include <string>

#include "nox-visuals/camera/v4l2_camera.h"
#include "nox-visuals/commands/commands.h"
#include "nox-visuals/doctor/camera_look.h"
#include "nox-visuals/doctor/installation.h"
#include "nox-visuals/doctor/scene_look.h"
#include "nox-visuals/errors.h"
#include "nox-visuals/options/command.h"
#include "nox-visuals/sources/source.h"

namespace nox::app {
namespace {

struct DoctorOptions {
  std::string word;  // SOURCE; empty: none is looked at
  bool json = false;
};

void append(Findings *findings, const Findings &more) {
  findings->insert(findings->end(), more.begin(), more.end());
}

// The picture tells what the camera's settings make of it, so it is looked at first.
Findings look_at_source(const std::string &word) {
  try {
    const Source source = parse_source(word, 0);
    const SceneLook scene = look_at_scene(source, word);
    Findings findings = findings_of(scene);
    if (source.kind == SourceKind::kCamera) {
      const bool seen = scene.totals.frames > 0;
      append(&findings, look_at_camera(V4l2Camera(source.place), source.place,
                                       seen ? std::optional(scene.bright) : std::nullopt));
    }
    return findings;
  } catch (const StreamError &error) {
    return {{Verdict::kFail, "source", error.what(), ""}};
  }
}

int doctor(const DoctorOptions &options) {
  Findings findings = look_at_installation();
  if (!options.word.empty()) append(&findings, look_at_source(options.word));
  for (const Finding &finding : findings) {
    std::cout << (options.json ? to_json(finding) : to_line(finding)) << '\n';
  }
  const bool failed = std::any_of(findings.begin(), findings.end(),
                                  [](const Finding &it) { return it.verdict == Verdict::kFail; });
  return failed ? kStreamFailed : kDone;
}

}  // namespace

void add_doctor(CLI::App *program, Action *chosen) {
  Command command(program, "doctor", "looks at what people stumble over");
  const auto options = std::make_shared<DoctorOptions>();
  command.option("SOURCE", &options->word, "also looks at this file, camera or address").value("");
  command.flag("--json", &options->json, "one JSON object a line");
  command.example("nox-visuals doctor /dev/video0");
  command.when_chosen([chosen, options] { *chosen = [options] { return doctor(*options); }; });
}

}  // namespace nox::app
