#include "cli/AudioSum.h"

#include "cli/FileRun.h"
#include "cli/WavFile.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <future>
#include <memory>
#include <utility>

namespace {

constexpr uint64_t kPieceBytes = uint64_t{ 2 } * 1024 * 1024; // Far more than starting a thread for it costs.
constexpr size_t kDigestBytes = 16;

[[noreturn]] void throwShort(uint64_t there, uint64_t declared)
{
    throw FileError("short-audio",
        "its audio is cut: " + std::to_string(there) + " of " + std::to_string(declared) + " bytes can be read");
}

/// The audio in pieces, each read by another thread while the one before is summed up: that takes about as long.
class Pieces {
public:
    Pieces(WavFile& usedFile, const ChunkList::Chunk& usedData) : file(usedFile), data(usedData) { readAhead(); }

    /// The next piece, valid until the next call; empty at the end. Throws FileError if the file gives less than it
    /// declares.
    std::string_view next()
    {
        if (!ahead.valid())
            return {};
        const size_t wanted = wantedBytes();
        const size_t count = ahead.get();
        if (count < wanted)
            throwShort(done + count, data.size);
        done += count;
        std::swap(current, coming);
        readAhead();
        return { current.get(), count };
    }

private:
    size_t wantedBytes() const { return static_cast<size_t>(std::min(data.size - done, kPieceBytes)); }

    void readAhead()
    {
        const size_t wanted = wantedBytes();
        if (wanted == 0)
            return;
        if (!coming)
            coming = std::make_unique_for_overwrite<char[]>(wanted);
        // The first piece is read where it is asked for: nothing could go on meanwhile.
        const auto policy = done == 0 ? std::launch::deferred : std::launch::async;
        ahead = std::async(policy, [this, wanted, offset = data.payload() + done, target = coming.get()] {
            return file.read(offset, target, wanted);
        });
    }

    WavFile& file;
    const ChunkList::Chunk& data;
    uint64_t done = 0; // Bytes handed out.
    std::unique_ptr<char[]> current;
    std::unique_ptr<char[]> coming;
    std::future<size_t> ahead; // Last, so that it is over before the memory goes.
};

std::string digestOf(WavFile& file, const ChunkList::Chunk& data)
{
    const uint64_t there = file.available(data.payload(), data.size);
    if (there < data.size)
        throwShort(there, data.size);
    QCryptographicHash hash(QCryptographicHash::Md5);
    Pieces pieces(file, data);
    for (std::string_view piece = pieces.next(); !piece.empty(); piece = pieces.next())
        hash.addData(QByteArrayView(piece.data(), static_cast<qsizetype>(piece.size())));
    return hash.result().toStdString();
}

StoredSum compare(const std::string& stored, const std::string& digest)
{
    if (stored.size() != kDigestBytes)
        return StoredSum::Malformed;
    if (stored == digest)
        return StoredSum::Agrees;
    return std::equal(stored.rbegin(), stored.rend(), digest.begin()) ? StoredSum::AgreesReversed : StoredSum::Differs;
}

} // namespace

AudioSum readAudioSum(const std::string& path)
{
    WavFile file(path);
    const ChunkList::Chunk* const data = file.chunks().find("data");
    if (!data)
        throw FileError("no-audio", "it has no audio");
    AudioSum sum;
    std::vector<std::string> stored; // Taken first: a failed read of the audio spoils the stream.
    for (const ChunkList::Chunk& chunk : file.chunks().chunks) {
        if (chunk.is("MD5 "))
            stored.push_back(chunk.size == kDigestBytes ? file.read(chunk.payload(), kDigestBytes) : std::string());
    }
    const std::string digest = digestOf(file, *data);
    for (const std::string& each : stored)
        sum.stored.push_back(compare(each, digest));
    sum.digits = QByteArray::fromStdString(digest).toHex().toStdString();
    return sum;
}
