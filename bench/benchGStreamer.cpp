// What does GStreamer need for what a step and a memory disk do?
#include "twoThreads.h"

#include <benchmark/benchmark.h>

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

#include <cstring>
#include <memory>
#include <vector>

namespace {

struct PipelineDeleter
{
    void operator()(GstElement* pipeline) const
    {
        gst_element_set_state(pipeline, GST_STATE_NULL);
        gst_object_unref(pipeline);
    }
};
using Pipeline = std::unique_ptr<GstElement, PipelineDeleter>;

GstElement* added(const Pipeline& pipeline, const char* factory)
{
    GstElement* element = gst_element_factory_make(factory, nullptr);
    if (element)
        gst_bin_add(GST_BIN(pipeline.get()), element);
    return element;
}

Pipeline newPipeline()
{
    gst_init(nullptr, nullptr);
    return Pipeline(gst_pipeline_new(nullptr));
}

void identityChain(benchmark::State& state)
{
    const Pipeline pipeline = newPipeline();
    GstElement* first = added(pipeline, "identity");
    GstElement* last = first;
    for (int i = 1; i < state.range(0); ++i) {
        GstElement* next = added(pipeline, "identity");
        gst_element_link(last, next);
        last = next;
    }
    GstElement* sink = added(pipeline, "fakesink");
    if (!first || !sink)
        return state.SkipWithError("an element is missing");
    g_object_set(sink, "sync", FALSE, "async", FALSE, nullptr);
    gst_element_link(last, sink);
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    GstPad* pad = gst_element_get_static_pad(first, "sink");
    gst_pad_send_event(pad, gst_event_new_stream_start("bench"));
    GstSegment segment;
    gst_segment_init(&segment, GST_FORMAT_BYTES);
    gst_pad_send_event(pad, gst_event_new_segment(&segment));
    GstBuffer* buffer = gst_buffer_new_allocate(nullptr, 64, nullptr);
    for (auto _ : state) {
        if (gst_pad_chain(pad, gst_buffer_ref(buffer)) != GST_FLOW_OK)
            state.SkipWithError("the chain refused a buffer");
    }
    gst_buffer_unref(buffer);
    gst_object_unref(pad);
}

GstBufferPool* poolOf(std::size_t bytes)
{
    GstBufferPool* pool = gst_buffer_pool_new();
    GstStructure* config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, nullptr, static_cast<guint>(bytes), 6, 6);
    gst_buffer_pool_set_config(pool, config);
    gst_buffer_pool_set_active(pool, TRUE);
    return pool;
}

/// Without a pool into a new buffer.
void write(GstBufferPool* pool, GstElement* source, const std::vector<unsigned char>& picture)
{
    GstBuffer* buffer = nullptr;
    if (pool)
        gst_buffer_pool_acquire_buffer(pool, &buffer, nullptr);
    else
        buffer = gst_buffer_new_allocate(nullptr, picture.size(), nullptr);
    gst_buffer_fill(buffer, 0, picture.data(), picture.size());
    gst_app_src_push_buffer(GST_APP_SRC(source), buffer);
}

void read(GstElement* sink, std::vector<unsigned char>& picture)
{
    GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(sink));
    gst_buffer_extract(gst_sample_get_buffer(sample), 0, picture.data(), picture.size());
    gst_sample_unref(sample);
}

/// The third argument: whether buffers come from a pool.
void appSourceToAppSink(benchmark::State& state)
{
    const auto bytes = static_cast<std::size_t>(state.range(0) * state.range(1) * 3);
    const Pipeline pipeline = newPipeline();
    GstElement* source = added(pipeline, "appsrc");
    GstElement* sink = added(pipeline, "appsink");
    if (!source || !sink)
        return state.SkipWithError("an element is missing");
    g_object_set(sink, "sync", FALSE, nullptr);
    g_object_set(source, "max-bytes", guint64{6} * bytes, "block", TRUE, nullptr);
    gst_element_link(source, sink);
    gst_element_set_state(pipeline.get(), GST_STATE_PLAYING);
    GstBufferPool* pool = state.range(2) ? poolOf(bytes) : nullptr;
    const std::vector<unsigned char> picture(bytes, 7);
    std::vector<unsigned char> target(bytes);
    for (int slot = 0; slot < 6; ++slot) {  // as the memory disk's, the buffers have been used before
        write(pool, source, picture);
        read(sink, target);
    }
    TwoThreads::measure(
        state, [&](int) { write(pool, source, picture); }, [&](int) { read(sink, target); });
    if (!pool)
        return;
    gst_buffer_pool_set_active(pool, FALSE);
    gst_object_unref(pool);
}

BENCHMARK(identityChain)->Arg(1)->Arg(50);
BENCHMARK(appSourceToAppSink)->Args({1920, 1080, 1})->Args({4096, 3000, 1})->Args({4096, 3000, 0})->UseManualTime();

}  // namespace
