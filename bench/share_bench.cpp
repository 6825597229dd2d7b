// Rows 2 and 3: one big file and many small ones onto a real Samba share through our mount, against smbclient, in
// turns on the same server and the same disk.
#include "bench/Bench.h"
#include "platform/Failure.h"
#include "platform/linux/ChildProcess.h"

#include <algorithm>
#include <fstream>
#include <random>

namespace sonorel::bench {

namespace {

constexpr size_t kBigBytes = 300'000'000;
constexpr int kFiles = 300;
constexpr size_t kSmallBytes = 300'000;
constexpr int kRuns = 5; // the machine's noise only adds
constexpr double kBoundOfBig = 1.4;
constexpr double kBoundOfSmall = 4.5;

QByteArray run(const QByteArray &program, const QList<QByteArray> &arguments,
               const std::optional<QByteArray> &input = {}) {
  const ToolResult result = runChild({program, arguments, input, {}, -1}, std::chrono::minutes(5), {});
  if (!succeeded(result)) {
    throw Failure(QString::fromUtf8(program + ": " + result.output));
  }
  return result.output.trimmed();
}

void fill(const std::filesystem::path &file, size_t size) {
  std::mt19937_64 random(size);
  std::ofstream stream(file, std::ios::binary);
  for (size_t done = 0; done < size; done += sizeof(std::uint64_t)) {
    const std::uint64_t block = random();
    stream.write(reinterpret_cast<const char *>(&block),
                 static_cast<std::streamsize>(std::min(sizeof block, size - done)));
  }
}

// A server, our mount of its share, and the other way to the same share.
class Share {
public:
  explicit Share(const std::filesystem::path &folder)
      : m_product((folder / "product").string().c_str()), m_point((folder / "point").string().c_str()) {
    std::filesystem::create_directory(folder / "point");
    m_port = run(SONOREL_STANDIN, {"start", m_product});
    run(SONOREL_BIN "/sonorel-mount", {m_point}, "//vaultbox:p%40ss%3B100%25:x@localhost:" + m_port + "/VB-SHARE$");
  }
  ~Share() {
    static_cast<void>(
        runChild({SONOREL_BIN "/sonorel-umount", {"-f", m_point}, {}, {}, -1}, std::chrono::seconds(5), {}));
    static_cast<void>(runChild({SONOREL_STANDIN, {"stop", m_product}, {}, {}, -1}, std::chrono::seconds(20), {}));
  }
  Share(const Share &) = delete;
  Share &operator=(const Share &) = delete;

  void smbclient(const QByteArray &commands) const {
    run("/usr/bin/smbclient", {"-p", m_port, "//localhost/VB-SHARE$", "-U", "vaultbox%p@ss;100%:x", "-c", commands});
  }
  [[nodiscard]] QByteArray onMount(const QByteArray &path) const { return m_point + '/' + path; }

private:
  QByteArray m_product;
  QByteArray m_point;
  QByteArray m_port;
};

} // namespace

bool bigFileOntoShare() {
  const Folder folder;
  const Share share(folder.path());
  const QByteArray source = (folder.path() / "big").string().c_str();
  fill(source.toStdString(), kBigBytes);
  double best = 1e9;
  for (int turn = 0; turn < kRuns; ++turn) {
    const double plain = secondsOf([&] { share.smbclient("put " + source + " Music/plain"); });
    const double ours = secondsOf([&] { run("/bin/cp", {"-p", source, share.onMount("Music/ours")}); });
    run("/bin/rm", {share.onMount("Music/plain"), share.onMount("Music/ours")});
    best = std::min(best, ours / plain);
  }
  return report(2, "300 MB onto a Samba share, against smbclient put", best, kBoundOfBig, "x");
}

bool smallFilesOntoShare() {
  const Folder folder;
  const Share share(folder.path());
  const QByteArray sources = (folder.path() / "small").string().c_str();
  std::filesystem::create_directory(sources.toStdString());
  for (int i = 0; i < kFiles; ++i) {
    fill(folder.path() / "small" / (std::to_string(i) + ".mp3"), kSmallBytes);
  }
  double best = 1e9;
  for (int turn = 0; turn < kRuns; ++turn) {
    run("/bin/mkdir", {share.onMount("Music/plain"), share.onMount("Music/ours")});
    const double plain =
        secondsOf([&] { share.smbclient("prompt off; cd Music/plain; lcd " + sources + "; mput *"); });
    const double ours = secondsOf([&] {
      for (int i = 0; i < kFiles; ++i) {
        const QByteArray name = '/' + QByteArray::number(i) + ".mp3";
        run("/bin/cp", {"-p", sources + name, share.onMount("Music/ours" + name)});
      }
    });
    run("/bin/rm", {"-r", share.onMount("Music/plain"), share.onMount("Music/ours")});
    best = std::min(best, ours / plain);
  }
  return report(3, "300 files of 300 kB onto a Samba share, against smbclient mput", best, kBoundOfSmall, "x");
}

} // namespace sonorel::bench
