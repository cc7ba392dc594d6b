// What resamples one 8-bit plane to another size: our scaler and the libraries that can do the
// same.
//
// Each has a constructor from the two sizes and run(src, src_stride, dst, dst_stride).
#ifndef SCALER_PEERS_H_
#define SCALER_PEERS_H_

#include <cstdint>

#include "scaler/scaler.h"
#ifdef NOX_HAVE_ZIMG
#include <zimg.h>

#include <cstdlib>
#endif
#ifdef NOX_HAVE_SWSCALE
extern "C" {
#include <libswscale/swscale.h>
}
#endif

namespace nox::bench {

inline NoxVideoFrame plane_view(std::uint8_t *data, std::int32_t stride, ScalerSize size) {
  NoxVideoFrame frame = {};
  frame.format = kNoxFormatGray;
  frame.width = frame.plane_widths[0] = size.width;
  frame.height = frame.plane_heights[0] = size.height;
  frame.n_planes = 1;
  frame.planes[0] = data;
  frame.strides[0] = stride;
  return frame;
}

class NoxScaling {
 public:
  NoxScaling(ScalerSize in, ScalerSize out) : in_(in), out_(out) {
    scaler_reset(&scaler_);
    scaler_select(&scaler_, in, out);
  }
  ~NoxScaling() { scaler_destroy(&scaler_); }
  NoxScaling(const NoxScaling &) = delete;
  NoxScaling &operator=(const NoxScaling &) = delete;

  void run(std::uint8_t *src, int src_stride, std::uint8_t *dst, int dst_stride) {
    const NoxVideoFrame from = plane_view(src, src_stride, in_);
    NoxVideoFrame to = plane_view(dst, dst_stride, out_);
    scaler_process(&scaler_, &from, &to);
  }

 private:
  ScalerSize in_;
  ScalerSize out_;
  Scaler scaler_;
};

#ifdef NOX_HAVE_ZIMG
// Lanczos of two lobes on full-range gray.
class ZimgScaling {
 public:
  ZimgScaling(ScalerSize in, ScalerSize out) {
    const zimg_image_format from = format(in);
    const zimg_image_format to = format(out);
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter = ZIMG_RESIZE_LANCZOS;
    params.filter_param_a = 2;
    params.cpu_type = ZIMG_CPU_AUTO_64B;  // every instruction set that the machine has
    graph_ = zimg_filter_graph_build(&from, &to, &params);
    std::size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(graph_, &bytes);
    scratch_ = std::aligned_alloc(64, (bytes + 63) / 64 * 64);
  }
  ~ZimgScaling() {
    std::free(scratch_);
    zimg_filter_graph_free(graph_);
  }
  ZimgScaling(const ZimgScaling &) = delete;
  ZimgScaling &operator=(const ZimgScaling &) = delete;

  void run(std::uint8_t *src, int src_stride, std::uint8_t *dst, int dst_stride) {
    zimg_image_buffer_const from = {};
    from.version = ZIMG_API_VERSION;
    from.plane[0] = {src, src_stride, ZIMG_BUFFER_MAX};
    zimg_image_buffer to = {};
    to.version = ZIMG_API_VERSION;
    to.plane[0] = {dst, dst_stride, ZIMG_BUFFER_MAX};
    zimg_filter_graph_process(graph_, &from, &to, scratch_, nullptr, nullptr, nullptr, nullptr);
  }

 private:
  static zimg_image_format format(ScalerSize size) {
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(size.width);
    format.height = static_cast<unsigned>(size.height);
    format.pixel_type = ZIMG_PIXEL_BYTE;
    format.pixel_range = ZIMG_RANGE_FULL;
    return format;
  }

  zimg_filter_graph *graph_;
  void *scratch_;
};
#endif

#ifdef NOX_HAVE_SWSCALE
// Lanczos as swscale sets it up by itself.
class SwscaleScaling {
 public:
  SwscaleScaling(ScalerSize in, ScalerSize out)
      : height_(in.height),
        context_(sws_getContext(in.width, in.height, AV_PIX_FMT_GRAY8, out.width, out.height,
                                AV_PIX_FMT_GRAY8, SWS_LANCZOS, nullptr, nullptr, nullptr)) {}
  ~SwscaleScaling() { sws_freeContext(context_); }
  SwscaleScaling(const SwscaleScaling &) = delete;
  SwscaleScaling &operator=(const SwscaleScaling &) = delete;

  void run(std::uint8_t *src, int src_stride, std::uint8_t *dst, int dst_stride) {
    sws_scale(context_, &src, &src_stride, 0, height_, &dst, &dst_stride);
  }

 private:
  int height_;
  SwsContext *context_;
};
#endif

}  // namespace nox::bench

#endif  // SCALER_PEERS_H_
