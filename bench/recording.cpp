#include "recording.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <stdexcept>

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

namespace bench {
namespace {

namespace fs = std::filesystem;

constexpr int kPairs = 3;
constexpr int kSeconds = 5;
// What the network carries of sixteen cameras.
constexpr const char* kSettings =
    " --set FrameWidth=320 --set FrameHeight=216 --set CAMERA/Exposure=5000 --log-level off";

/// Goes with everything in it.
class Folder {
  public:
    Folder() {
        std::string name = (fs::temp_directory_path() / "zelt-bench-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("No folder for recordings");
        m_path = name;
    }
    ~Folder() {
        std::error_code error;
        fs::remove_all(m_path, error);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;

    const fs::path& path() const { return m_path; }

  private:
    fs::path m_path;
};

struct Recorded {
    std::uint64_t bytes = 0;
    std::uint64_t lost = 0;
    std::uint64_t underruns = 0;  ///< frames that came when no buffer was free
    double seconds = 0.0;
};

std::uint64_t bytesIn(const fs::path& directory) {
    std::uint64_t bytes = 0;
    for (const auto& entry : fs::recursive_directory_iterator(directory)) {
        if (entry.is_regular_file()) bytes += entry.file_size();
    }
    return bytes;
}

Recorded record(const fs::path& programs, const fs::path& directory) {
    const fs::path report = directory.string() + ".json";
    const std::string command = "VIMBAC_SIMULATOR_SCENARIO=sixteen-cameras '" +
                                (programs / "zelt_host").string() + "' record --json --seconds " +
                                std::to_string(kSeconds) + kSettings + " --out '" + directory.string() +
                                "' >'" + report.string() + "' 2>/dev/null";
    // A busy machine may make it doubt its times; what counts here are its frames.
    [[maybe_unused]] const int code = std::system(command.c_str());
    std::ifstream stream(report);
    const auto json = nlohmann::json::parse(stream, nullptr, false);
    if (!json.is_object() || !json.contains("channels") || json["channels"].empty()) {
        throw std::runtime_error("zelt_host does not record: " + command);
    }
    Recorded recorded{bytesIn(directory), 0, 0, json["seconds"].get<double>()};
    for (const auto& channel : json["channels"]) {
        recorded.lost += channel["lost"].get<std::uint64_t>();
        recorded.underruns += channel["underruns"].get<std::uint64_t>();
    }
    return recorded;
}

/// Bytes per second of writing them one after the other into one file.
double writingRate(const fs::path& file, std::uint64_t bytes) {
    const std::vector<char> block(std::size_t{1} << 20, 'x');
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (descriptor < 0) throw std::runtime_error("Cannot write " + file.string());
    const auto begin = std::chrono::steady_clock::now();
    for (std::uint64_t left = bytes; left > 0;) {
        const ssize_t written =
            ::write(descriptor, block.data(), std::min<std::uint64_t>(left, block.size()));
        if (written <= 0) break;
        left -= static_cast<std::uint64_t>(written);
    }
    ::close(descriptor);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
    fs::remove(file);
    return static_cast<double>(bytes) / taken.count();
}

}  // namespace

Figure recordingRate(const fs::path& programs) {
    const Folder folder;
    std::vector<double> ratios;
    std::uint64_t lost = 0;
    std::uint64_t underruns = 0;
    double rate = 0.0;
    for (int pair = 0; pair < kPairs; ++pair) {
        const fs::path directory = folder.path() / std::to_string(pair);
        const Recorded recorded = record(programs, directory);
        fs::remove_all(directory);
        rate = static_cast<double>(recorded.bytes) / recorded.seconds;
        ratios.push_back(rate / writingRate(folder.path() / "raw", recorded.bytes));
        lost += recorded.lost;
        underruns += recorded.underruns;
    }
    Figure figure{"recording / writing the same bytes", medianOf(ratios), 0.9, true, "", false};
    figure.excused = lost == 0;
    figure.explanation = std::to_string(static_cast<int>(rate / 1e6)) + " MB/s, " + std::to_string(lost) +
                         " frames lost" +
                         (lost == 0 ? ": limited by the cameras"
                                    : ", " + std::to_string(underruns) + " came with no buffer free");
    return figure;
}

}  // namespace bench
