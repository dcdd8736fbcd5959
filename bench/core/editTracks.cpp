// Every track of an iXML text renamed, by plain searches in the whole text (the baseline) and in parts. The argument
// is the number of tracks. For a few tracks the fixed cost counts, for many the growth, and for the hostile shapes at
// the end whether anything grows with the square. Plain searches stop where they would take minutes.

#include "core/IxmlTrackText.h"
#include "tests/support/PlainIxmlEdit.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

struct TrackList {
    std::string text;
    std::vector<BwfTrack> edits;
};

std::string number(int channel)
{
    return "<CHANNEL_INDEX>" + std::to_string(channel) + "</CHANNEL_INDEX>";
}

/// Tracks one after the other, each with this text behind its number, and an edit of each with a name that ends so.
TrackList listOf(int tracks, const std::string& behindNumber, const std::string& nameEnd)
{
    TrackList list{ "<BWFXML><TRACK_LIST>", {} };
    for (int i = 1; i <= tracks; ++i) {
        const std::string text = std::to_string(i);
        list.text.append("<TRACK>").append(number(i)).append("<INTERLEAVE_INDEX>").append(text);
        list.text.append("</INTERLEAVE_INDEX><NAME>old name ").append(behindNumber).append("\n");
        list.edits.push_back({ i, "Boom " + text + nameEnd, "MIX" });
    }
    list.text += "<NAME>last</NAME><FUNCTION>last</FUNCTION></TRACK></TRACK_LIST></BWFXML>";
    return list;
}

TrackList ordinary(int tracks)
{
    return listOf(tracks, "</NAME><FUNCTION>LEFT</FUNCTION></TRACK>", "");
}
TrackList namesWithTags(int tracks)
{
    return listOf(tracks, "</NAME><FUNCTION>LEFT</FUNCTION></TRACK>", "<TRACK></NAME>");
}
TrackList namesNeverClosed(int tracks)
{
    TrackList list = listOf(tracks, "<FUNCTION>LEFT</FUNCTION></TRACK>", "");
    return { list.text, { list.edits.rbegin(), list.edits.rend() } }; // In this order each still finds its track.
}
TrackList tracksClosedAtTheEnd(int tracks)
{
    return listOf(tracks, "</NAME><FUNCTION>LEFT</FUNCTION>", "");
}
TrackList oneTrackOfManyNumbers(int tracks)
{
    TrackList list = listOf(tracks, "", "");
    list.text = "<TRACK>";
    for (int i = 1; i <= tracks; ++i)
        list.text += number(i);
    list.text += "<NAME>last</NAME><FUNCTION>last</FUNCTION></TRACK>";
    return list;
}

struct Plain {
    static std::string edit(const TrackList& list)
    {
        std::string text = list.text;
        for (const BwfTrack& each : list.edits)
            PlainIxmlEdit::setTrack(text, each);
        return text;
    }
};

struct Parts {
    static std::string edit(const TrackList& list)
    {
        IxmlTrackText text(list.text);
        for (const BwfTrack& each : list.edits)
            text.setTrack(each);
        return text.edited();
    }
};

using Shape = TrackList (*)(int tracks);

template <class Way> void add(const std::string& name, Shape shape, const std::vector<int>& counts)
{
    for (const int tracks : counts) {
        const auto run = [shape, tracks](benchmark::State& state) {
            const TrackList list = shape(tracks);
            for (auto _ : state)
                benchmark::DoNotOptimize(Way::edit(list));
            state.SetItemsProcessed(state.iterations() * tracks);
        };
        benchmark::RegisterBenchmark((name + "/" + std::to_string(tracks)).c_str(), run)->Unit(benchmark::kMicrosecond);
    }
}

} // namespace

int main(int argc, char** argv)
{
    add<Plain>("plain/ordinary", ordinary, { 8, 16, 32, 64, 1000 });
    add<Parts>("parts/ordinary", ordinary, { 8, 16, 32, 64, 1000, 20000 });
    add<Plain>("plain/namesWithTags", namesWithTags, { 2000 });
    add<Parts>("parts/namesWithTags", namesWithTags, { 2000, 8000 });
    add<Plain>("plain/namesNeverClosed", namesNeverClosed, { 2000 });
    add<Parts>("parts/namesNeverClosed", namesNeverClosed, { 2000, 20000 });
    add<Plain>("plain/tracksClosedAtTheEnd", tracksClosedAtTheEnd, { 2000 });
    add<Parts>("parts/tracksClosedAtTheEnd", tracksClosedAtTheEnd, { 2000, 20000 });
    add<Plain>("plain/oneTrackOfManyNumbers", oneTrackOfManyNumbers, { 2000 });
    add<Parts>("parts/oneTrackOfManyNumbers", oneTrackOfManyNumbers, { 2000, 20000 });

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
