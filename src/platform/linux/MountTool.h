// "/sbin/mount" and "/sbin/umount" on Linux: the mount program for a product on the network, a link for the embedded
// product. A point is only ever mounted on while it is an empty folder. The URL holds the password: it goes to the
// program's standard input and nowhere else. Any thread; blocks. One call at a time for one point.
#pragma once

#include "platform/Processes.h"
#include "platform/linux/Volumes.h"

#include <functional>

namespace sonorel {

// "//user:password@address/share"
struct ShareUrl {
  QString address;
  QString share;
};

// nullopt when it does not have the form. The last "@" ends the credentials.
[[nodiscard]] std::optional<ShareUrl> parseShareUrl(const QString &url);

class MountTool {
public:
  // volumes must outlive the object; productName is what a new embedded product calls itself.
  MountTool(Volumes &volumes, QString productName, std::function<void(const QString &)> log)
      : m_volumes(volumes), m_productName(std::move(productName)), m_log(std::move(log)) {}

  // "-t", type, URL, point. Ends with a status of its own before any program runs when the point is not usable; its
  // text then has neither "Authentication" nor "Permission" in it.
  [[nodiscard]] ToolResult mount(const ToolRequest &request, std::stop_token stop);
  // ["-f",] point
  [[nodiscard]] ToolResult unmount(const ToolRequest &request, std::stop_token stop);

private:
  [[nodiscard]] ToolResult mountEmbedded(const QString &name, const QString &share);
  [[nodiscard]] ToolResult mountShare(const QString &name, const ToolRequest &request, std::stop_token stop);
  // A leftover at the point makes room. False when there is no folder that could be mounted on.
  [[nodiscard]] bool clearPoint(const QString &name);
  void note(const QString &line) const;

  Volumes &m_volumes;
  const QString m_productName;
  const std::function<void(const QString &)> m_log;
};

} // namespace sonorel
