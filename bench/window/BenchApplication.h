#pragma once

#include <benchmark/benchmark.h>

#include <QApplication>
#include <QTemporaryDir>

/// The main function of a benchmark with widgets: no display, a home folder of its own.
inline int runWidgetBenchmarks(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_RUNTIME_DIR", home.path().toUtf8());
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
