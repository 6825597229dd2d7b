// The small binary files by which the client tells the product what it is doing: written atomically into the
// share's system folder, picked up by name. Format: docs/formats/messages.md. Any thread; no two threads write the
// same name.
#pragma once

#include "core/state/Session.h"
#include "core/state/ShareLayout.h"
#include "core/state/Strings.h"
#include "core/state/View.h"
#include "platform/Desktop.h"
#include "platform/FileSystem.h"

#include <QByteArray>
#include <QString>

namespace sonorel {

inline constexpr QStringView kClientConnected = u"ClientConnected";
inline constexpr QStringView kClientAlive = u"ClientAlive";
inline constexpr QStringView kClientDisconnected = u"ClientDisconnected";
inline constexpr QStringView kNetMusicFileCollection = u"NetMusicFileCollection";
inline constexpr QStringView kPhotoFileCollection = u"PhotoFileCollection";
inline constexpr QStringView kServerFileExtension = u".orv";

// What a transfer has placed on the share.
struct TransferredKinds {
  bool soundFileTransferred = false;
  bool videoFileTransferred = false;
  bool photoFileTransferred = false;
};

class ClientMessages {
public:
  // All references must outlive the object.
  ClientMessages(FileSystem &files, Desktop &desktop, Strings &strings, View &view, const Session &session,
                 ShareFolders folders);

  // Builds the record and writes it under that name into the system folder, replacing an older file. A write that
  // fails is ignored.
  void generateMetaDataFile(const QString &fileName, const QString &GUID, const QString &command,
                            const QString &msgKind);
  [[nodiscard]] static QByteArray generateMetaDataForPL(const QString &GUID, const QString &command,
                                                        const QString &msgKind);
  // The message of that command, with the client's own GUID.
  void send(QStringView command);
  void sendClientAliveMessage();
  void sendMetaDataForTransferredFiles(const TransferredKinds &kinds);

private:
  FileSystem &m_files;
  Desktop &m_desktop;
  Strings &m_strings;
  View &m_view;
  const Session &m_session;
  ShareFolders m_folders;
};

} // namespace sonorel
