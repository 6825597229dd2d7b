// The whole client on a fake platform: a selected product whose share can be mounted, and the controller.
#pragma once

#include "FakePlatform.h"
#include "core/ApplicationController.h"
#include "favourites/FavouritesFile.h"

#include <gtest/gtest.h>

#include <memory>

namespace sonorel::test {

inline const QString kPoint = QStringLiteral("/Volumes/VB-SHARE$");
inline const QString kSystemFolder = QStringLiteral("/Volumes/VB-SHARE$/System/");

class ControllerTest : public testing::Test {
protected:
  ControllerTest() {
    fakes.install();
    fakes.files.erase(fakes.paths.PFPath);
    fakes.files.erase(fakes.paths.dropperPropertyFilePath);
    mountShare(fakes.files, QStringLiteral("Auracore 5"));
    fakes.files.unmount(kPoint);
    fakes.files.erase(kPoint);
    values.homePath = QStringLiteral("/Users/anna");
    values.backupFolder = QStringLiteral("/Users/anna/Backup");
    values.dropsFinished = [this](quint32 drops) { finished += drops; };
    values.initialised = [this](bool initialised) {
      initialisations.append(initialised);
      wasBusy = fakes.userInterface.last().busy;
    };
  }

  void selectProduct(const QString &password) {
    QVariantMap record{{QStringLiteral("Is Selected"), QStringLiteral("Yes")},
                       {QStringLiteral("Detection Type"), QStringLiteral("1")},
                       {QStringLiteral("IP Address"), QStringLiteral("192.168.1.20")}};
    if (!password.isEmpty()) {
      record.insert(QStringLiteral("Password"), fakes.propertyLists.archive(password));
    }
    fakes.putDictionary(fakes.paths.productsDetailsDictFilePath,
                        {{QStringLiteral("Selected Devices"), QVariantList{record}}});
  }
  void start() {
    controller = std::make_unique<ApplicationController>(fakes.platform, values);
    controller->start();
    fakes.loop.runPosted();
  }
  void startConnected() {
    selectProduct(QStringLiteral("p@ss"));
    start();
    ASSERT_TRUE(fakes.userInterface.last().connected);
  }
  // A local track of 200 kB with tags.
  QString song(const QString &title) {
    const QString path = QStringLiteral("/Users/anna/Music/") + title + QStringLiteral(".mp3");
    fakes.files.put(path, QByteArray(200'000, 'm'));
    fakes.metadata.set(path, {{QStringLiteral("The Band")}, QStringLiteral("The Album"), title, {}});
    return path;
  }
  // "name: number of titles" of every list on the product that holds titles.
  QStringList lists() {
    const QByteArray file = fakes.files.bytes(kSystemFolder + QStringLiteral("NetMusicFavorites.orv"));
    QStringList found;
    for (const FavouriteList &list : decodeMusicFavourites(file, {QStringLiteral("Auracore 5"), false}).lists) {
      if (!list.songs.empty()) {
        found.append(list.playlistName + QStringLiteral(": ") + QString::number(list.songs.size()));
      }
    }
    return found;
  }
  void deliver(const QString &object, const QStringList &paths) {
    fakes.notifications.deliver(QStringLiteral("TrackChute_DragRecieved"),
                                {object, {{QStringLiteral("draggedFiles"), paths}}});
    fakes.loop.runPosted();
  }
  void carry() {
    fakes.worker.run();
    fakes.loop.runPosted();
  }

  // What was dropped is carried, and the first track of it arrives.
  void sleepInTheSecondCopy() {
    fakes.processes.onRun = [this](const ToolRequest &request) -> std::optional<ToolResult> {
      if (request.program != QStringLiteral("/bin/cp") || ++copiesSeen != 2) {
        return std::nullopt;
      }
      fakes.power.send(PowerMessage::SystemWillSleep);
      return ToolResult{ToolEnding::Stopped, -1, {}};
    };
    carry();
  }

  FakePlatform fakes;
  ControllerValues values;
  int copiesSeen = 0; // since sleepInTheSecondCopy
  quint32 finished = 0;
  QList<bool> initialisations;
  bool wasBusy = false;
  std::unique_ptr<ApplicationController> controller;
};

} // namespace sonorel::test
