// What does GStreamer need for what a step and a memory disk do?
#include "gstreamerPair.h"

#include <benchmark/benchmark.h>

#include <gst/app/gstappsink.h>
#include <gst/app/gstappsrc.h>
#include <gst/gst.h>

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

BENCHMARK(identityChain)->Arg(50);

constexpr guint Buffers = 6;

GstBufferPool* poolOf(std::size_t bytes)
{
    GstBufferPool* pool = gst_buffer_pool_new();
    GstStructure* config = gst_buffer_pool_get_config(pool);
    gst_buffer_pool_config_set_params(config, nullptr, static_cast<guint>(bytes), Buffers, Buffers);
    gst_buffer_pool_set_config(pool, config);
    gst_buffer_pool_set_active(pool, TRUE);
    return pool;
}

}  // namespace

struct GStreamerPair::Elements
{
    Pipeline m_pcPipeline = newPipeline();
    GstElement* m_pcSource = added(m_pcPipeline, "appsrc");
    GstElement* m_pcSink = added(m_pcPipeline, "appsink");
    GstBufferPool* m_pcPool = nullptr;  ///< Owned; null when each picture has a new buffer.
};

GStreamerPair::GStreamerPair(std::size_t bytes, bool pooled) : m_pcElements(std::make_unique<Elements>())
{
    if (!isInstalled())
        return;
    g_object_set(m_pcElements->m_pcSink, "sync", FALSE, nullptr);
    g_object_set(m_pcElements->m_pcSource, "max-bytes", guint64{Buffers} * bytes, "block", TRUE, nullptr);
    gst_element_link(m_pcElements->m_pcSource, m_pcElements->m_pcSink);
    gst_element_set_state(m_pcElements->m_pcPipeline.get(), GST_STATE_PLAYING);
    if (pooled)
        m_pcElements->m_pcPool = poolOf(bytes);
    std::vector<unsigned char> picture(bytes, 7);
    for (guint slot = 0; slot < Buffers; ++slot) {
        write(picture);
        read(picture);
    }
}

GStreamerPair::~GStreamerPair()
{
    if (!m_pcElements->m_pcPool)
        return;
    gst_buffer_pool_set_active(m_pcElements->m_pcPool, FALSE);
    gst_object_unref(m_pcElements->m_pcPool);
}

bool GStreamerPair::isInstalled() const
{
    return m_pcElements->m_pcSource && m_pcElements->m_pcSink;
}

void GStreamerPair::write(const std::vector<unsigned char>& picture)
{
    GstBuffer* buffer = nullptr;
    if (m_pcElements->m_pcPool)
        gst_buffer_pool_acquire_buffer(m_pcElements->m_pcPool, &buffer, nullptr);
    else
        buffer = gst_buffer_new_allocate(nullptr, picture.size(), nullptr);
    gst_buffer_fill(buffer, 0, picture.data(), picture.size());
    gst_app_src_push_buffer(GST_APP_SRC(m_pcElements->m_pcSource), buffer);
}

void GStreamerPair::read(std::vector<unsigned char>& picture)
{
    GstSample* sample = gst_app_sink_pull_sample(GST_APP_SINK(m_pcElements->m_pcSink));
    gst_buffer_extract(gst_sample_get_buffer(sample), 0, picture.data(), picture.size());
    gst_sample_unref(sample);
}
