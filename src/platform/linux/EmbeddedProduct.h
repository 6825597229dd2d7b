// A product without a network: its share is a folder tree on this machine, mounted by a link that takes the place of
// the empty mount point. It has the files that a product carries itself; whatever is there already is left alone.
// Any thread; two calls for the same point do not run at the same time.
#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

namespace sonorel {

class EmbeddedProduct {
public:
  // tree is the host path of the share's content; productName is what a new tree calls itself.
  EmbeddedProduct(QString tree, QString productName)
      : m_tree(std::move(tree)), m_productName(std::move(productName)) {}

  // The folders of the share, the name file, the address file and the limits file, each only when missing.
  // Throws Failure.
  void prepare() const;
  // Replaces the empty folder at the host path by the link. Throws Failure: Exists when the folder is not empty,
  // Absent when it is missing.
  void mount(const QByteArray &point) const;
  // Removes the link and leaves an empty folder. False when the link is not there.
  [[nodiscard]] bool unmount(const QByteArray &point) const;

  // nullopt when the point is not a link to the tree; otherwise a number that changes with every mount.
  [[nodiscard]] static std::optional<quint64> mountIdentity(const QByteArray &point, const QString &tree);
  // True for "embedded" in any case.
  [[nodiscard]] static bool isAddress(const QString &address);

private:
  QString m_tree;
  QString m_productName;
};

} // namespace sonorel
