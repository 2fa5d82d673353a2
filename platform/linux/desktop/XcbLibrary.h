#pragma once

#include <xcb/randr.h>
#include <xcb/xcb.h>

#include <optional>

namespace vornix {

// The functions of libxcb and libxcb-randr that are used here.
struct XcbLibrary {
  decltype(xcb_connect)* connect = nullptr;
  decltype(xcb_disconnect)* disconnect = nullptr;
  decltype(xcb_connection_has_error)* hasError = nullptr;
  decltype(xcb_get_setup)* setup = nullptr;
  decltype(xcb_setup_roots_iterator)* roots = nullptr;
  decltype(xcb_screen_next)* nextScreen = nullptr;
  decltype(xcb_get_extension_data)* extension = nullptr;
  decltype(xcb_randr_query_version)* queryVersion = nullptr;
  decltype(xcb_randr_query_version_reply)* queryVersionReply = nullptr;
  decltype(xcb_randr_get_output_primary)* primary = nullptr;
  decltype(xcb_randr_get_output_primary_reply)* primaryReply = nullptr;
  decltype(xcb_randr_get_screen_resources_current)* resources = nullptr;
  decltype(xcb_randr_get_screen_resources_current_reply)* resourcesReply = nullptr;
  decltype(xcb_randr_get_screen_resources_current_outputs)* outputs = nullptr;
  decltype(xcb_randr_get_screen_resources_current_outputs_length)* outputCount = nullptr;
  decltype(xcb_randr_get_output_info)* outputInfo = nullptr;
  decltype(xcb_randr_get_output_info_reply)* outputInfoReply = nullptr;
  decltype(xcb_randr_get_crtc_info)* crtcInfo = nullptr;
  decltype(xcb_randr_get_crtc_info_reply)* crtcInfoReply = nullptr;
  xcb_extension_t* randr = nullptr;

  // None when a library or a function is missing.
  [[nodiscard]] static std::optional<XcbLibrary> load();
};

}  // namespace vornix
