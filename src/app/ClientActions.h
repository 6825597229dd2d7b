// What the outside may ask of the client. Every operation returns at once and runs on the controller's thread; rows
// are given with the text that was seen, so that the controller can refuse a row that has changed meanwhile.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>

namespace sonorel {

struct ClientActions {
  std::function<bool()> isQuitting = [] { return false; }; // asked to quit, and not refused
  std::function<void()> reopen;                            // a click on the dock icon
  std::function<void(QStringList)> openFiles;
  std::function<void()> connect;
  std::function<void()> disconnect;
  std::function<void()> cancel;
  std::function<void()> quit;
  std::function<void()> help;
  std::function<void()> products;
  std::function<void()> preferences;
  std::function<void(quint32 serial, int button)> answerAlert;
  std::function<void(QString)> enterPassword;
  std::function<void()> cancelPassword;
  std::function<void(QString address, QString hostName)> addManualProduct;
  std::function<void(int, QString)> addDetectedProduct;
  std::function<void(int, QString)> addAddedProduct;
  std::function<void(int, QString)> selectProduct;
  std::function<void(int, QString)> removeProduct;
  std::function<void(int, QString)> removeAddedProduct;
  std::function<void()> removeAllProducts;
  std::function<void(int)> selectLanguage;
};

} // namespace sonorel
