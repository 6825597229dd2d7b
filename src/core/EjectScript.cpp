#include "core/EjectScript.h"

#include "platform/ShareNames.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

QString ejectScript() {
  const QString indent(16, u' ');
  const QStringList lines{indent + u"tell application \"Finder\""_s,
                          indent + u"if (exists the disk \"%1\") then"_s.arg(kShareName),
                          indent + u"eject \"%1\""_s.arg(kShareName),
                          indent + u"delay 2"_s,
                          u"\t\t\t\tend if"_s,
                          indent + u"end tell"_s};
  return lines.join(u'\n');
}

} // namespace sonorel
