#include "core/Labels.h"

#include <array>

using namespace Qt::Literals::StringLiterals;

namespace sonorel {

namespace {

constexpr std::array<QStringView, 33> kPlainLabels{u"HelpTooltipText",
                                                   u"MenuText",
                                                   u"CloseMenuText",
                                                   u"TranferStatusLabelText",
                                                   u"TransferMessagesLabel",
                                                   u"CancelButtonText",
                                                   u"CancelButtonTooltip",
                                                   u"AboutTabText",
                                                   u"TransferTabText",
                                                   u"ConnectionTabText",
                                                   u"PreferTabText",
                                                   u"PreferencesLabelText",
                                                   u"LangSelectText",
                                                   u"DetectedTableHeaderText",
                                                   u"AddedTableHeaderText",
                                                   u"SelectedTableHeaderText",
                                                   u"AddManualProductButtonText",
                                                   u"ManuallyAddedProductRepresentation",
                                                   u"DeleteManualProductButtonText",
                                                   u"RemoveAProductButtonText",
                                                   u"RemoveAllProductsButtonText",
                                                   u"manualHostNameLabelText",
                                                   u"manualIPAddressLabelText",
                                                   u"BtnOk",
                                                   u"PasswordLabel",
                                                   u"enterPasswordPanelHeaderText",
                                                   u"ProductsLabelText",
                                                   u"ConnectButtonText",
                                                   u"DisconnectButtonText",
                                                   u"ConnectingText",
                                                   u"HelpButtonText",
                                                   u"AddToMyProductsButtonText",
                                                   u"QuitMenuText"};

} // namespace

QMap<QString, QString> windowLabels(const Strings &strings, const QString &deviceName) {
  QMap<QString, QString> labels;
  for (const QStringView key : kPlainLabels) {
    labels.insert(key.toString(), strings.text(key.toString()));
  }
  const auto about = u"AboutLabelText"_s;
  labels.insert(about, withProductName(strings.text(about), deviceName));
  const auto version = u"VersionLabelText"_s;
  labels.insert(version, strings.text(version) + kShortVersion.toString());
  const auto versionTip = u"VersionLabelTooltipText"_s;
  labels.insert(versionTip, strings.text(versionTip) + kFullVersion.toString());
  return labels;
}

} // namespace sonorel
