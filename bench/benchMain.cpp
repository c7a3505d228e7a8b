#include "memoryArenas.h"

#include <QApplication>

#ifdef LUMIVANT_BENCH_OPENCV
#include <opencv2/core.hpp>
#endif

#include <benchmark/benchmark.h>

int main(int argc, char* argv[])
{
    MemoryArenas::setUp();  // as the program
#ifdef LUMIVANT_BENCH_OPENCV
    cv::setNumThreads(1);  // as everywhere here
#endif
    QApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
