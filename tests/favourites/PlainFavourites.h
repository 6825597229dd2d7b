// The favourites of one product and one client as a slow, plain model: what has to stand in the server's file after
// every connection and every drop, with no regard to bytes, files and cost.
#pragma once

#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace sonorel::test {

struct PlainTitle {
  QString path;   // as the server gives it back, without the prefix
  QString type;   // empty for "Vaultbox 1"
  int serial = 0; // stands for the GUID
};

struct PlainList {
  QString name; // as the player shows it
  QString id;
  int serial = 0; // stands for the GUID; -1 to -4: the colour keys that the client makes
  QList<PlainTitle> titles;
};

struct PlainSong {
  QString playlist;
  QString path; // "@@@@@" between folders
  QString album;
  bool transferred = true;
};

struct PlainLimit {
  int enable = 0;
  int limit = 0;
};

class PlainFavourites {
public:
  PlainFavourites(QString product, bool utf8) : m_product(std::move(product)), m_utf8(utf8) {}

  std::optional<QList<PlainList>> file;
  std::optional<QList<PlainList>> copy;                // of the four keys
  std::optional<std::array<PlainLimit, 4>> limitsFile; // Red, Green, Yellow, Blue
  int nextId = 0;                                      // the "PlaylistID" setting
  int nextSerial = 1;

  void connect();
  void enableLimits();
  void drop(const QList<PlainSong> &songs);

private:
  struct Entry : PlainList {
    QString dictionaryName;
    std::optional<QString> read; // the name in the file, unchanged since
  };
  using Titles = QMap<QString, QList<PlainTitle>>;

  [[nodiscard]] bool vaultbox() const { return m_product == QStringLiteral("Vaultbox 1"); }
  [[nodiscard]] QList<Entry> dictionary();
  void repairKeys(QList<Entry> &entries);
  void renumber(QList<Entry> &entries);
  void write(const QList<Entry> &entries);
  [[nodiscard]] QStringList build(const QList<PlainSong> &songs, Titles &titles);
  [[nodiscard]] PlainTitle title(const QString &path, const QString &type);
  void buildLooseSongs(const QList<PlainSong> &songs, QStringList &names, Titles &titles);
  void merge(QList<Entry> &entries, const Entry &added, int colour);
  void mergeIntoKey(Entry &key, Entry added, int colour);
  void adaptLimits(const QStringList &names, const QList<Entry> &entries);
  void saveCopy(const QList<Entry> &entries);

  // The model's texts are Latin-1 or hold characters that Windows-1252 has not.
  [[nodiscard]] QString afterWriting(QString text) const;

  QString m_product;
  bool m_utf8;                        // the player's texts; Windows-1252 otherwise
  std::array<PlainLimit, 4> m_limits; // as last read
};

} // namespace sonorel::test
