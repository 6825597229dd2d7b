#include "core/state/LogException.h"

#include "support/FakeDesktop.h"
#include "support/Printers.h"

#include <gtest/gtest.h>

#include <stdexcept>

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

TEST(LogException, LogsClassOperationAndReason) {
  test::FakeDesktop desktop;
  logException(desktop, u"startTransfer"_s, Failure(u"no such file: /a%@b"_s));
  logException(desktop, u"isVolume"_s, std::runtime_error("broken"), u"Connection"_s);
  EXPECT_EQ(desktop.lines, (QStringList{u"Exception in ---> <AppController><startTransfer> no such file: /a%@b"_s,
                                        u"Exception in ---> <Connection><isVolume> broken"_s}));
}

TEST(LogException, KeepsTheWholeReasonOfAFailure) {
  const Failure failure(u"Größe: 日本"_s, FailureKind::DiskFull);
  EXPECT_EQ(reasonOf(failure), u"Größe: 日本"_s);
  EXPECT_STREQ(failure.what(), "Größe: 日本");
  EXPECT_EQ(failure.kind(), FailureKind::DiskFull);
}
