// The one table that turns the system's own absolute paths ("/Volumes/...", "/Library/...") into host paths, and the
// check of paths that come from outside (a drop, an opened file). Rows are matched by whole components after
// cleaning; whatever matches no row is itself. Pure: nothing on the disk is looked at. Any thread.
#pragma once

#include <QList>
#include <QString>

#include <optional>

namespace sonorel {

// Host paths, all absolute, except home.
struct Roots {
  QString data;           // the client's data folder, D
  QString runtime;        // the session's folder, R
  QString home;           // the home path as the system's own paths begin with it
  QString resources;      // what stands in the application's resource folder
  QString scripts;        // the installed scripts
  QString embedded;       // the tree of the embedded product's share
  QString agent;          // the drop agent's executable
  QString mountProgram;   // takes the mount point, and the URL on its standard input
  QString unmountProgram; // takes the mount point
};

class PathMap {
public:
  explicit PathMap(Roots roots);

  [[nodiscard]] const Roots &roots() const { return m_roots; }
  // nullopt when no host path can stand for it: not absolute, or with a character that has no UTF-8 form.
  [[nodiscard]] std::optional<QString> host(const QString &path) const;
  // The system's path for a path from outside. One below the mounted volumes becomes its /Volumes path; one that the
  // table would lead elsewhere is refused (nullopt) and the reason is filled in, when given.
  [[nodiscard]] std::optional<QString> fromOutside(const QString &hostPath, QString *reason = nullptr) const;
  // The host folder in which the mount points stand.
  [[nodiscard]] QString hostVolumes() const;

  // Absolute, without ".", "..", "//" and a trailing "/"; nullopt as for host.
  [[nodiscard]] static std::optional<QString> cleaned(const QString &path);
  // "X" for the cleaned path "/Volumes/X" and all below it, else empty.
  [[nodiscard]] static QString volumeName(const QString &cleanedPath);
  // What follows "/Volumes/X/", empty for the point itself.
  [[nodiscard]] static QString belowVolume(const QString &cleanedPath);

private:
  struct Row {
    QString logical;
    QString host;
  };
  [[nodiscard]] const Row *rowOf(const QString &cleanedPath) const;

  Roots m_roots;
  QList<Row> m_rows; // the first match counts
};

} // namespace sonorel
