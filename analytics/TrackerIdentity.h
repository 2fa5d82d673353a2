#pragma once

#include <optional>
#include <string>
#include <utility>

#include "analytics/AnalyticsServices.h"
#include "analytics/Lazy.h"

namespace vornix {

// The values by which every hit says where it comes from; each computed when first needed. Main
// thread.
class TrackerIdentity {
 public:
  // Both must outlive the identity.
  TrackerIdentity(const AnalyticsServices& services, Lazy<AnalyticsConfiguration>& configuration);
  TrackerIdentity(const TrackerIdentity&) = delete;
  TrackerIdentity& operator=(const TrackerIdentity&) = delete;
  ~TrackerIdentity() = default;

  [[nodiscard]] std::string userIdentifier() const;
  [[nodiscard]] const std::string& cid() { return cid_.get(); }
  void setCid(std::string cid) { cid_.set(std::move(cid)); }

  // True when the running program's own version names a beta.
  [[nodiscard]] bool isBeta() { return isBeta_.get(); }

  [[nodiscard]] const std::string& applicationVersion() { return applicationVersion_.get(); }
  // None computes it anew when next asked.
  void setApplicationVersion(std::optional<std::string> version) {
    applicationVersion_.set(std::move(version));
  }

  // None is not kept: the next call asks again.
  [[nodiscard]] std::optional<std::string> quillbaseSessionIdentifier();
  void setQuillbaseSessionIdentifier(std::optional<std::string> identifier);

  // The person's own choice, else the debug or the production identifier.
  [[nodiscard]] const std::string& analyticsGAID() { return analyticsGAID_.get(); }
  void setAnalyticsGAID(std::optional<std::string> gaid) { analyticsGAID_.set(std::move(gaid)); }

 private:
  const AnalyticsServices& services_;
  Lazy<std::string> cid_;
  Lazy<bool> isBeta_;
  Lazy<std::string> applicationVersion_;
  Lazy<std::string> analyticsGAID_;
  std::optional<std::string> quillbaseSessionIdentifier_;
};

}  // namespace vornix
