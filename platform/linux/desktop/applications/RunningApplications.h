#pragma once

#include <string_view>
#include <vector>

#include "platform/desktop/ApplicationService.h"
#include "platform/linux/desktop/applications/ApplicationBus.h"
#include "platform/linux/desktop/applications/InstalledApplications.h"
#include "platform/linux/desktop/applications/ProcessTable.h"

namespace vornix::desktop {

// Which processes are applications, by the first evidence that says so: the owner of the bus name
// equal to an installed identifier; the application's unit in the control groups; the variables
// that launchers set for the process that they start; the program or script of an installed entry.
// Helper processes of an application are left out. In launch order.
// The last two count only for processes that know no message bus or the one at `busAddress`: of
// another session of the same person, nobody would hear us. An empty address is that of any.
[[nodiscard]] std::vector<RunningApplicationEntry> findRunningApplications(
    const InstalledApplications& installed, const ProcessTable& table, ApplicationBus& bus,
    std::string_view busAddress);

}  // namespace vornix::desktop
