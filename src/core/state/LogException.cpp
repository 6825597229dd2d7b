#include "core/state/LogException.h"

namespace sonorel {

void logException(Desktop &desktop, const QString &operation, const std::exception &exception,
                  const QString &className) {
  desktop.log(QStringLiteral("Exception in ---> <") + className + QStringLiteral("><") + operation +
              QStringLiteral("> ") + reasonOf(exception));
}

} // namespace sonorel
