#include "platform/linux/desktop/XcbLibrary.h"

#include "platform/linux/system/SharedLibrary.h"

namespace vornix {
namespace {

bool bindCore(XcbLibrary& xcb, const SharedLibrary& core) {
  return core.bind(xcb.connect, "xcb_connect", nullptr) &&
         core.bind(xcb.disconnect, "xcb_disconnect", nullptr) &&
         core.bind(xcb.hasError, "xcb_connection_has_error", nullptr) &&
         core.bind(xcb.setup, "xcb_get_setup", nullptr) &&
         core.bind(xcb.roots, "xcb_setup_roots_iterator", nullptr) &&
         core.bind(xcb.nextScreen, "xcb_screen_next", nullptr) &&
         core.bind(xcb.extension, "xcb_get_extension_data", nullptr);
}

bool bindRandr(XcbLibrary& xcb, const SharedLibrary& randr) {
  xcb.randr = static_cast<xcb_extension_t*>(randr.symbol("xcb_randr_id"));
  return xcb.randr != nullptr && randr.bind(xcb.queryVersion, "xcb_randr_query_version", nullptr) &&
         randr.bind(xcb.queryVersionReply, "xcb_randr_query_version_reply", nullptr) &&
         randr.bind(xcb.primary, "xcb_randr_get_output_primary", nullptr) &&
         randr.bind(xcb.primaryReply, "xcb_randr_get_output_primary_reply", nullptr) &&
         randr.bind(xcb.resources, "xcb_randr_get_screen_resources_current", nullptr) &&
         randr.bind(xcb.resourcesReply, "xcb_randr_get_screen_resources_current_reply", nullptr) &&
         randr.bind(xcb.outputs, "xcb_randr_get_screen_resources_current_outputs", nullptr) &&
         randr.bind(xcb.outputCount, "xcb_randr_get_screen_resources_current_outputs_length",
                    nullptr) &&
         randr.bind(xcb.outputInfo, "xcb_randr_get_output_info", nullptr) &&
         randr.bind(xcb.outputInfoReply, "xcb_randr_get_output_info_reply", nullptr) &&
         randr.bind(xcb.crtcInfo, "xcb_randr_get_crtc_info", nullptr) &&
         randr.bind(xcb.crtcInfoReply, "xcb_randr_get_crtc_info_reply", nullptr);
}

}  // namespace

std::optional<XcbLibrary> XcbLibrary::load() {
  const auto core = SharedLibrary::open("libxcb.so.1", nullptr);
  const auto randr = core ? SharedLibrary::open("libxcb-randr.so.0", nullptr) : std::nullopt;
  XcbLibrary xcb;
  const bool complete = randr && bindCore(xcb, *core) && bindRandr(xcb, *randr);
  return complete ? std::optional(xcb) : std::nullopt;
}

}  // namespace vornix
