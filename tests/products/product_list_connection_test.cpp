#include "products/PasswordArchive.h"
#include "products/ProductList.h"

#include "ProductFixture.h"

using namespace Qt::Literals::StringLiterals;
using namespace sonorel;

namespace {

const auto kMac = u"00-1A-2B-3C-4D-5E"_s;

class ProductListConnectionTest : public test::ProductTest {
protected:
  ProductListConnectionTest() {
    session.setPasswordString(u"secret"_s);
    settings.set(u"MACAdress"_s, QByteArray("first line\n00-1A-2B-3C-4D-5E\nmore"));
  }
  // What a connection leaves in a record.
  ProductRecord updated(const ProductRecord &record, const QString &mac = kMac) {
    return with(with(record, u"Password"_s, encrypt(lists, u"secret"_s)), u"Mac Address"_s, mac);
  }
};

} // namespace

TEST_F(ProductListConnectionTest, ActiveProductIsTheFirstMarkedOne) {
  put(u"Selected Devices"_s,
      {passive(byHand(u"1"_s)), active(with(byHand(u"10.0.0.2"_s), u"Password"_s, encrypt(lists, u"pw"_s))),
       active(byHand(u"3"_s))});
  const auto product = products.activeProduct();
  EXPECT_EQ(product.address, u"10.0.0.2"_s);
  EXPECT_EQ(product.password, u"pw"_s);
  EXPECT_FALSE(product.listIsEmpty);
}

TEST_F(ProductListConnectionTest, ActiveProductHasNoPasswordFromEarlierConnections) {
  put({{u"Selected Devices"_s, QVariantList{active(byHand(u"10.0.0.2"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{updated(byHand(u"10.0.0.2"_s))}}});
  EXPECT_EQ(products.activeProduct().password, QString());
}

TEST_F(ProductListConnectionTest, NoActiveProduct) {
  EXPECT_TRUE(products.activeProduct().listIsEmpty);
  put(u"Selected Devices"_s, {passive(byHand(u"10.0.0.2"_s))});
  EXPECT_FALSE(products.activeProduct().listIsEmpty);
  EXPECT_EQ(products.activeProduct().address, QString());
}

TEST_F(ProductListConnectionTest, RefreshesTheActiveRecordAndRemembersTheConnection) {
  put(u"Selected Devices"_s, {passive(byHand(u"10.0.0.1"_s)), active(byHand(u"10.0.0.2"_s, u"box"_s))});
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  EXPECT_EQ(selected(),
            QVariantList({passive(byHand(u"10.0.0.1"_s)), updated(active(byHand(u"10.0.0.2"_s, u"box"_s)))}));
  EXPECT_EQ(earlier(), QVariantList({updated(byHand(u"10.0.0.2"_s))}));
  EXPECT_EQ(files.mode(path), 0600U);
}

TEST_F(ProductListConnectionTest, NewConnectionIsRememberedBehindTheEarlierOnes) {
  const auto other = with(byHand(u"10.0.0.1"_s), u"Password"_s, encrypt(lists, u"other"_s));
  const auto otherType = with(other, u"Detection Type"_s, u"0"_s);
  const auto sameAddress = with(otherType, u"IP Address"_s, u"10.0.0.2"_s);
  put({{u"Selected Devices"_s, QVariantList{active(byHand(u"10.0.0.2"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{other, otherType, sameAddress}}});
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  EXPECT_EQ(earlier(), QVariantList({other, otherType, sameAddress, updated(byHand(u"10.0.0.2"_s))}));
}

TEST_F(ProductListConnectionTest, SameAddressAndTypeIsUpdatedNotDuplicated) {
  put({{u"Selected Devices"_s, QVariantList{active(byHand(u"10.0.0.2"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{with(byHand(u"10.0.0.2"_s), u"Detection Type"_s, u"0"_s),
                                                     with(byHand(u"10.0.0.2"_s), u"Kept"_s, u"yes"_s)}}});
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  EXPECT_EQ(earlier(), QVariantList({with(byHand(u"10.0.0.2"_s), u"Detection Type"_s, u"0"_s),
                                     updated(with(byHand(u"10.0.0.2"_s), u"Kept"_s, u"yes"_s))}));
}

TEST_F(ProductListConnectionTest, WithoutAnActiveProductTheEarlierRecordHasNoType) {
  put(u"Selected Devices"_s, {});
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  EXPECT_EQ(earlier(), QVariantList({updated(QVariantMap{{u"IP Address"_s, u"10.0.0.2"_s}})}));
}

TEST_F(ProductListConnectionTest, MissingFileStaysMissing) {
  products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
  EXPECT_FALSE(files.exists(path));
}

TEST_F(ProductListConnectionTest, AddressFileWithoutAWholeAddressCountsAsNone) {
  for (const QByteArray &bytes : {QByteArray("00-1A-2B-3C-4D-5E"), QByteArray("a\n00-1A-2B-3C-4D-E"), QByteArray()}) {
    settings.set(u"MACAdress"_s, bytes);
    put(u"Selected Devices"_s, {active(byHand(u"10.0.0.2"_s))});
    products.updateProductInfoInProductsLists(u"10.0.0.2"_s);
    EXPECT_EQ(selected(), QVariantList({updated(active(byHand(u"10.0.0.2"_s)), u"NOMACADDRESS"_s)}))
        << bytes.toStdString();
  }
}

TEST_F(ProductListConnectionTest, PasswordOfTheRecordComesFirst) {
  put({{u"Selected Devices"_s, QVariantList{with(byHand(u"10.0.0.2"_s), u"Password"_s, encrypt(lists, u"own"_s))}},
       {u"Earlier Connected Devices"_s, QVariantList{updated(byHand(u"10.0.0.2"_s))}}});
  EXPECT_EQ(products.markActive({0, {}})->password, u"own"_s);
}

TEST_F(ProductListConnectionTest, PasswordIsFoundByAddressAndType) {
  put({{u"Selected Devices"_s, QVariantList{byHand({}, u"box"_s), byHand(u"10.0.0.9"_s)}},
       {u"Earlier Connected Devices"_s,
        QVariantList{updated(with(byHand(u"box"_s), u"Detection Type"_s, u"0"_s)),
                     with(updated(byHand(u"box"_s)), u"Password"_s, encrypt(lists, u"right"_s))}}});
  EXPECT_EQ(products.markActive({0, {}})->password, u"right"_s) << "a product known by host name";
  EXPECT_EQ(products.markActive({1, {}})->password, QString());
}
