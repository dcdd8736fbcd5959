#pragma once

#include "tests/support/TempFolder.h"
#include "tests/support/WavBuilder.h"

#include <QList>
#include <QString>

#include <cstdint>
#include <filesystem>
#include <string>

/// A folder of small recordings as a field recorder names and fills them: `bext`, 5 KB of padded iXML, two tracks.
class ShootFolder {
public:
    /// Makes `count` files in 20 folders. They go when the object goes.
    explicit ShootFolder(int count)
    {
        constexpr int kFolders = 20;
        for (int i = 0; i < kFolders; ++i)
            std::filesystem::create_directory(folder.file("roll" + std::to_string(i)));
        for (int i = 0; i < count; ++i) {
            const std::string path
                = folder.file("roll" + std::to_string(i % kFolders) + "/take" + std::to_string(i) + ".wav");
            recording(i).write(path);
            files.append(QString::fromStdString(path));
        }
    }

    const QList<QString>& paths() const { return files; }

private:
    static WavBuilder recording(int number)
    {
        constexpr size_t kIxmlBytes = 5120;
        BextFields bext;
        bext.description = "sSCENE=12A";
        bext.timeReference = 172824000u + static_cast<uint64_t>(number);
        const std::string take = std::to_string(number);
        const std::string text = "<BWFXML><PROJECT>Harbour</PROJECT><SCENE>12A</SCENE><TAKE>" + take
            + "</TAKE><TAPE>18Y12M31</TAPE><CIRCLED>FALSE</CIRCLED><NOTE>plane overhead</NOTE>"
              "<SPEED><TIMECODE_RATE>25/1</TIMECODE_RATE></SPEED><TRACK_LIST>"
              "<TRACK><CHANNEL_INDEX>1</CHANNEL_INDEX><NAME>Boom</NAME></TRACK>"
              "<TRACK><CHANNEL_INDEX>2</CHANNEL_INDEX><NAME>Lav</NAME></TRACK></TRACK_LIST></BWFXML>";
        WavBuilder file;
        file.bext(bext).ixmlPadded(text, kIxmlBytes, ' ').fmt(48000, 2, 24).dataFrames(48);
        return file;
    }

    TempFolder folder;
    QList<QString> files;
};
