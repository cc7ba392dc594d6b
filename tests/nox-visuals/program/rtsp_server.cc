// A camera on the network: serves a Matroska file with VP8 as RTSP on loopback until it is ended.
// usage: rtsp_server PORT FILE
#include <gst/rtsp-server/rtsp-server.h>

#include <cstdio>
#include <string>

int main(int argc, char **argv) {
  if (argc != 3) return 2;
  gst_init(nullptr, nullptr);
  GstRTSPServer *server = gst_rtsp_server_new();
  gst_rtsp_server_set_address(server, "127.0.0.1");
  gst_rtsp_server_set_service(server, argv[1]);
  GstRTSPMediaFactory *factory = gst_rtsp_media_factory_new();
  const std::string launch =
      "( filesrc location=" + std::string(argv[2]) + " ! matroskademux ! rtpvp8pay name=pay0 )";
  gst_rtsp_media_factory_set_launch(factory, launch.c_str());
  gst_rtsp_media_factory_set_shared(factory, TRUE);
  GstRTSPMountPoints *mounts = gst_rtsp_server_get_mount_points(server);
  gst_rtsp_mount_points_add_factory(mounts, "/pen", factory);
  g_object_unref(mounts);
  if (gst_rtsp_server_attach(server, nullptr) == 0) return 1;
  std::puts("ready");
  std::fflush(stdout);
  g_main_loop_run(g_main_loop_new(nullptr, FALSE));
}
