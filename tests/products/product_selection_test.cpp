#include "products/ProductSelection.h"

#include "products/PasswordArchive.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

class ProductSelectionTest : public test::ProductTest {
protected:
  ProductSelectionTest() {
    first = with(byHand(u"10.0.0.1"_s), u"Password"_s, encrypt(lists, u"one"_s));
    second = with(byHand(u"10.0.0.2"_s), u"Password"_s, encrypt(lists, u"two"_s));
  }
  void putActiveAndOther() { put(u"Selected Devices"_s, {active(first), passive(second)}); }

  ProductRecord first;
  ProductRecord second;
  bool connected = false;
  bool workerRuns = false;
  bool disconnectWorks = true;
  bool panelOpen = false;
  QStringList did;
  ProductSelection selection{products,
                             session,
                             strings,
                             view,
                             {[this] { return connected; },
                              [this] {
                                did.append(
                                    u"connect %1 %2"_s.arg(session.IPAddressString(), session.PasswordString()));
                                session.setConnectedAddress(session.IPAddressString());
                                connected = true;
                              },
                              [this] {
                                did.append(u"disconnect"_s);
                                connected = connected && !disconnectWorks;
                              },
                              [this] { return workerRuns; }, [this] { did.append(u"refuse"_s); },
                              [this](bool shownNow) {
                                did.append(shownNow ? u"panel"_s : u"no panel"_s);
                                panelOpen = shownNow;
                              },
                              [this] { return panelOpen; }}};
};

} // namespace

TEST_F(ProductSelectionTest, ConnectsToTheChosenProduct) {
  putActiveAndOther();
  selection.onProductSelection({1, u"10.0.0.2 * "_s});
  EXPECT_EQ(did, QStringList({u"connect 10.0.0.2 two"_s}));
  EXPECT_EQ(selected(), QVariantList({passive(first), active(second)}));
}

TEST_F(ProductSelectionTest, DisconnectsFromTheOtherFirst) {
  putActiveAndOther();
  connected = true;
  session.setConnectedAddress(u"10.0.0.1"_s);
  selection.onProductSelection({1, {}});
  EXPECT_EQ(did, QStringList({u"disconnect"_s, u"connect 10.0.0.2 two"_s}));
}

TEST_F(ProductSelectionTest, ProductThatIsConnectedAlreadyIsLeftConnected) {
  putActiveAndOther();
  connected = true;
  session.setConnectedAddress(u"10.0.0.1"_s);
  selection.onProductSelection({0, {}});
  EXPECT_EQ(did, QStringList());
}

TEST_F(ProductSelectionTest, ProductThatWasOnlyChosenIsConnectedTo) {
  putActiveAndOther();
  connected = true;
  session.setConnectedAddress(u"10.0.0.2"_s);
  session.setIPAddressString(u"10.0.0.1"_s); // chosen while the other one did not answer
  selection.onProductSelection({0, {}});
  EXPECT_EQ(did, QStringList({u"disconnect"_s, u"connect 10.0.0.1 one"_s}));
}

TEST_F(ProductSelectionTest, ChoiceIsRefusedWhileTheWorkerIsAtWorkOnAShareThatIsSilent) {
  putActiveAndOther();
  workerRuns = true;
  session.setIPAddressString(u"10.0.0.1"_s);
  session.setPasswordString(u"one"_s);
  selection.onProductSelection({1, {}});
  EXPECT_EQ(did, QStringList({u"refuse"_s}));
  EXPECT_EQ(session.IPAddressString(), u"10.0.0.1"_s);
  EXPECT_EQ(session.PasswordString(), u"one"_s);
}

TEST_F(ProductSelectionTest, RefusedDisconnectStopsAndTheNextChoiceTriesAgain) {
  putActiveAndOther();
  connected = true;
  disconnectWorks = false;
  session.setConnectedAddress(u"10.0.0.1"_s);
  session.setIPAddressString(u"10.0.0.1"_s);
  selection.onProductSelection({1, {}});
  EXPECT_EQ(did, QStringList({u"disconnect"_s}));
  EXPECT_EQ(session.IPAddressString(), u"10.0.0.1"_s);
  EXPECT_EQ(selected(), QVariantList({passive(first), active(second)})) << "the marks stay as they were set";
  disconnectWorks = true;
  selection.onProductSelection({1, {}});
  EXPECT_EQ(did, QStringList({u"disconnect"_s, u"disconnect"_s, u"connect 10.0.0.2 two"_s}));
}

TEST_F(ProductSelectionTest, PasswordOfAnEarlierConnectionIsUsed) {
  put({{u"Selected Devices"_s, QVariantList{byHand({}, u"box"_s)}},
       {u"Earlier Connected Devices"_s,
        QVariantList{with(byHand(u"box"_s), u"Password"_s, encrypt(lists, u"earlier"_s))}}});
  selection.onProductSelection({0, {}});
  EXPECT_EQ(did, QStringList({u"connect box earlier"_s}));
}

TEST_F(ProductSelectionTest, WithoutAPasswordThePanelIsOpened) {
  put(u"Selected Devices"_s, {byHand(u"10.0.0.3"_s)});
  selection.onProductSelection({0, {}});
  EXPECT_EQ(did, QStringList({u"panel"_s}));
  EXPECT_EQ(session.IPAddressString(), u"10.0.0.3"_s);
  selection.OkEnterPasswordPanel({});
  EXPECT_TRUE(panelOpen) << "an empty password leaves it open";
  selection.OkEnterPasswordPanel(u"typed"_s);
  EXPECT_EQ(did, QStringList({u"panel"_s, u"no panel"_s, u"connect 10.0.0.3 typed"_s}));
}

TEST_F(ProductSelectionTest, CancelledPanelConnectsNothing) {
  put(u"Selected Devices"_s, {byHand(u"10.0.0.3"_s)});
  selection.onProductSelection({0, {}});
  selection.CancelEnterPasswordPanel();
  selection.OkEnterPasswordPanel(u"too late"_s);
  EXPECT_EQ(did, QStringList({u"panel"_s, u"no panel"_s}));
  EXPECT_EQ(session.PasswordString(), QString());
}

TEST_F(ProductSelectionTest, ChoiceThatCannotBeWrittenConnectsNothingAndIsTold) {
  putActiveAndOther();
  files.setFreeBytes(u"/"_s, 0);
  selection.onProductSelection({1, {}});
  EXPECT_EQ(did, QStringList());
  EXPECT_EQ(alerts(), QStringList({kNotChanged}));
}

TEST_F(ProductSelectionTest, ProductThatIsNotActiveGoesWithoutAQuestion) {
  putActiveAndOther();
  connected = true;
  selection.RemoveAProductProductsList({1, {}});
  EXPECT_EQ(selected(), QVariantList({active(first)}));
  EXPECT_TRUE(view.asked.empty());
}

TEST_F(ProductSelectionTest, ActiveProductGoesOnlyOnYes) {
  putActiveAndOther();
  connected = true;
  selection.RemoveAProductProductsList({0, {}});
  ASSERT_EQ(view.asked.size(), 1U);
  EXPECT_EQ(view.asked.front().message, u"Please note"_s);
  EXPECT_EQ(view.asked.front().informativeText,
            u"You are connected to this product. It will be disconnected and removed from the list. "
            u"Do you want to continue?"_s);
  EXPECT_EQ(view.asked.front().buttons, QStringList({u"No"_s, u"Yes"_s}));
  EXPECT_EQ(view.asked.front().helpAnchor, u"RemoveAProductFromProductList"_s);
  view.answer(0);
  EXPECT_EQ(selected(), QVariantList({active(first), passive(second)}));
  selection.RemoveAProductProductsList({0, {}});
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({passive(second)}));
  EXPECT_EQ(did, QStringList({u"disconnect"_s}));
}

TEST_F(ProductSelectionTest, ActiveProductStaysWhenTheDisconnectIsRefused) {
  putActiveAndOther();
  connected = true;
  disconnectWorks = false;
  selection.RemoveAProductProductsList({0, {}});
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({active(first), passive(second)}));
}

TEST_F(ProductSelectionTest, AnswerMeansTheProductEvenWhenTheRowsHaveMoved) {
  putActiveAndOther();
  connected = true;
  selection.RemoveAProductProductsList({0, {}});
  put(u"Selected Devices"_s, {passive(second), active(with(first, u"Mac Address"_s, u"00-11"_s))});
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({passive(second)}));
}

TEST_F(ProductSelectionTest, AnswerMeansTheActiveProductAlsoWhenOthersLackASerialNumberToo) {
  const auto other = passive(detected(u"A"_s, u"00-11"_s, u"NOSERIALNUMBERSET"_s));
  const auto asked = active(detected(u"B"_s, u"00-22"_s, u"NOSERIALNUMBERSET"_s));
  put(u"Selected Devices"_s, {other, asked});
  connected = true;
  selection.RemoveAProductProductsList({1, {}});
  put(u"Selected Devices"_s, {other, with(asked, u"Mac Address"_s, u"NOMACADDRESS"_s)}); // a connection did it
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({other}));
}

TEST_F(ProductSelectionTest, AnswerMeansTheProductAlsoWhenAnotherWasChosenMeanwhile) {
  putActiveAndOther();
  connected = true;
  session.setConnectedAddress(u"10.0.0.2"_s);
  selection.RemoveAProductProductsList({0, {}});
  put(u"Selected Devices"_s, {passive(first), active(second)});
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({active(second)}));
  EXPECT_EQ(did, QStringList()) << "the other product stays connected";
}

TEST_F(ProductSelectionTest, ProductThatIsStillConnectedIsDisconnectedAlsoWhenAnotherIsMarked) {
  putActiveAndOther();
  connected = true;
  session.setConnectedAddress(u"10.0.0.1"_s);
  selection.RemoveAProductProductsList({0, {}});
  put(u"Selected Devices"_s, {passive(first), active(second)}); // the choice was refused, the mark stays
  view.answer(1);
  EXPECT_EQ(selected(), QVariantList({active(second)}));
  EXPECT_EQ(did, QStringList({u"disconnect"_s}));
}

TEST_F(ProductSelectionTest, ActiveProductGoesAtOnceWhileNothingIsConnected) {
  putActiveAndOther();
  selection.RemoveAProductProductsList({0, {}});
  EXPECT_EQ(selected(), QVariantList({passive(second)}));
}

TEST_F(ProductSelectionTest, WholeListGoesWithItsKey) {
  putActiveAndOther();
  connected = true;
  selection.RemoveWholeProductsFromProductList();
  ASSERT_EQ(view.asked.size(), 1U);
  EXPECT_EQ(view.asked.front().helpAnchor, u"RemoveWholeProductsFromProductList"_s);
  view.answer(-1);
  EXPECT_EQ(selected().size(), 2) << "the program ended instead of an answer";
  selection.RemoveWholeProductsFromProductList();
  view.answer(1);
  EXPECT_FALSE(content().contains(u"Selected Devices"_s));
  EXPECT_EQ(tables.selected, QStringList());
}

TEST_F(ProductSelectionTest, EachActionReadsAndWritesTheFileOnceAmongFiveHundredProducts) {
  QVariantList many;
  QVariantList past;
  for (int i = 0; i < 500; ++i) {
    many.append(byHand(u"10.0.%1.%2"_s.arg(i / 250).arg(i % 250)));
    past.append(with(byHand(u"10.0.%1.%2"_s.arg(i / 250).arg(i % 250)), u"Password"_s, encrypt(lists, u"pw"_s)));
  }
  put({{u"Selected Devices"_s, many},
       {u"Manually Added Devices"_s, QVariantList{byHand(u"10.9.9.9"_s)}},
       {u"Earlier Connected Devices"_s, past}});
  EXPECT_EQ(costOf([&] { selection.onProductSelection({499, {}}); }), kReadAndWritten);
  EXPECT_EQ(did, QStringList({u"connect 10.0.1.249 pw"_s}));
  EXPECT_EQ(costOf([&] { products.updateProductInfoInProductsLists(u"10.0.1.249"_s); }), kReadAndWritten);
  EXPECT_EQ(earlier().size(), 500);
  EXPECT_EQ(costOf([&] { selection.RemoveAProductProductsList({250, {}}); }), kReadAndWritten);
  EXPECT_EQ(costOf([&] { products.AddManuallyAddedProductToProductsList({0, {}}); }), kReadAndWritten);
  EXPECT_EQ(costOf([&] { products.AddManualProduct(u"10.9.9.8"_s, {}); }), kReadAndWritten);
  connected = false;
  EXPECT_EQ(costOf([&] { selection.RemoveWholeProductsFromProductList(); }), kReadAndWritten);
  EXPECT_FALSE(content().contains(u"Selected Devices"_s));
}
