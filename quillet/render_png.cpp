#include "quillet/render_png.h"

#include <cairo.h>
#include <cmath>
#include <librsvg/rsvg.h>
#include <memory>
#include <mutex>
#include <stdexcept>

namespace quillet
{

namespace
{

struct Unref {
    void operator()(RsvgHandle* handle) const { g_object_unref(handle); }
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
    void operator()(cairo_t* cairo) const { cairo_destroy(cairo); }
    void operator()(GError* error) const { g_error_free(error); }
};

void throw_if(GError* error)
{
    if (!error)
        return;
    const std::unique_ptr<GError, Unref> owner(error);
    throw std::runtime_error(std::string("the picture cannot be drawn: ") + error->message);
}

cairo_status_t append(void* closure, const unsigned char* data, unsigned int size)
{
    static_cast<std::string*>(closure)->append(reinterpret_cast<const char*>(data), size);
    return CAIRO_STATUS_SUCCESS;
}

} // namespace

std::string render_png(const std::string& svg)
{
    // How far the libraries of fonts below librsvg can be called by several threads is not said
    // anywhere: one picture at a time.
    static std::mutex mutex;
    const std::lock_guard<std::mutex> lock(mutex);
    GError* error = nullptr;
    const std::unique_ptr<RsvgHandle, Unref> handle(
        rsvg_handle_new_from_data(reinterpret_cast<const guint8*>(svg.data()), svg.size(), &error));
    throw_if(error);
    gdouble width = 0;
    gdouble height = 0;
    if (rsvg_handle_get_intrinsic_size_in_pixels(handle.get(), &width, &height) == FALSE)
        throw std::runtime_error("the picture has no size");
    constexpr double scale = 2;
    const std::unique_ptr<cairo_surface_t, Unref> surface(
        cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(std::ceil(scale * width)),
                                   static_cast<int>(std::ceil(scale * height))));
    const std::unique_ptr<cairo_t, Unref> cairo(cairo_create(surface.get()));
    cairo_set_source_rgb(cairo.get(), 1, 1, 1);
    cairo_paint(cairo.get());
    const RsvgRectangle viewport{0, 0, scale * width, scale * height};
    rsvg_handle_render_document(handle.get(), cairo.get(), &viewport, &error);
    throw_if(error);
    std::string png;
    if (cairo_surface_write_to_png_stream(surface.get(), append, &png) != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error("the picture cannot be made a PNG");
    return png;
}

} // namespace quillet
