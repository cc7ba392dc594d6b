// CPU that noxvectorizer takes in a pipeline, beside the effect that GStreamer's users reach for
// when they want edges: edgetv, which needs a converter to RGB in front.
#include "noxvisuals/pipeline_run.h"

int main(int argc, char **argv) {
  const std::string bars = nox::bench::still_source("smpte");
  return nox::bench::measure_pipelines(
      argc, argv,
      {
          {"pipeline/1920x1080/nox", bars, "noxvectorizer"},
          {"pipeline/1920x1080/videoconvert ! edgetv", bars, "videoconvert n-threads=1 ! edgetv"},
          {"pipeline/1920x1080/source and sink alone", bars, ""},
      });
}
