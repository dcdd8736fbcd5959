#include "cli/AudioSum.h"

#include "cli/FileRun.h"
#include "cli/WavFile.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <memory>

namespace {

constexpr std::size_t kPieceBytes = 256 * 1024; // Stays in the processor's cache between reading and hashing.
constexpr std::size_t kDigestBytes = 16;

[[noreturn]] void throwShort(uint64_t there, uint64_t declared)
{
    throw FileError("short-audio",
        "its audio is cut: " + std::to_string(there) + " of " + std::to_string(declared) + " bytes can be read");
}

std::string digestOf(WavFile& file, const ChunkList::Chunk& data)
{
    if (file.available(data.payload(), data.size) < data.size)
        throwShort(file.available(data.payload(), data.size), data.size);
    const auto piece = std::make_unique_for_overwrite<char[]>(kPieceBytes);
    QCryptographicHash hash(QCryptographicHash::Md5);
    for (uint64_t done = 0; done < data.size;) {
        const auto wanted = static_cast<std::size_t>(std::min<uint64_t>(data.size - done, kPieceBytes));
        const std::size_t count = file.read(data.payload() + done, piece.get(), wanted);
        if (count < wanted)
            throwShort(done + count, data.size);
        hash.addData(QByteArrayView(piece.get(), static_cast<qsizetype>(count)));
        done += count;
    }
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
