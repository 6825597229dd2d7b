// picture-to-jpeg <PICTURE >JPEG: turns a PNG, GIF or BMP picture into a JPEG. Run by the artwork exporter for the
// pictures that are no JPEG. Status 0; 1 when the input is no such picture; 3 when Qt cannot write a JPEG.

#include "scripts/JpegPicture.h"

#include <QBuffer>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QImageWriter>
#include <QPainter>

#include <cstdio>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int kQuality = 92;
constexpr int kNoPicture = 1;
constexpr int kNoWriter = 3;

int complain(const QString &reason, int status) {
  std::fprintf(stderr, "%s\n", reason.toUtf8().constData());
  return status;
}

// A JPEG has no transparency: what shines through is white.
QImage opaque(const QImage &image) {
  QImage sheet(image.size(), QImage::Format_RGB32);
  sheet.fill(Qt::white);
  QPainter painter(&sheet);
  painter.drawImage(0, 0, image);
  return sheet;
}

} // namespace

int main() {
  if (!QImageWriter::supportedImageFormats().contains("jpeg")) {
    return complain(u"Qt cannot write JPEG pictures here: its plugin libqjpeg.so is missing (package libqt6gui6)"_s,
                    kNoWriter);
  }
  QFile input;
  if (!input.open(0, QIODevice::ReadOnly)) {
    return complain(input.errorString(), kNoPicture);
  }
  QByteArray bytes = input.read(sonorel::kLargestPicture);
  QBuffer source(&bytes);
  QImageReader reader(&source);
  reader.setDecideFormatFromContent(true);
  const QByteArray format = reader.format();
  if (format != "png" && format != "gif" && format != "bmp") {
    return complain(u"not a picture that can be converted"_s, kNoPicture);
  }
  const QImage image = reader.read();
  if (image.isNull()) {
    return complain(reader.errorString(), kNoPicture);
  }
  QFile output;
  if (!output.open(1, QIODevice::WriteOnly)) {
    return complain(output.errorString(), kNoWriter);
  }
  QImageWriter writer(&output, "jpeg");
  writer.setQuality(kQuality);
  if (!writer.write(opaque(image)) || !output.flush()) {
    return complain(writer.errorString(), kNoWriter);
  }
  return 0;
}
