#pragma once

#include <wayland-client-core.h>

struct wl_seat;

/// The protocol zwlr_data_control_unstable_v1, as far as it is used: the clipboard of a seat, without a window and
/// without the focus. Wayland thread.
namespace tavrelon::desktop::data_control {

struct Manager;
struct Device;
struct Source;
struct Offer;

extern const wl_interface managerInterface;

struct DeviceListener {
    void (*offered)(void* data, Device* device, Offer* offer);    ///< its types follow
    void (*selection)(void* data, Device* device, Offer* offer);  ///< null: the clipboard is empty
    void (*finished)(void* data, Device* device);                 ///< the seat is gone
    void (*primarySelection)(void* data, Device* device, Offer* offer);
};
struct SourceListener {
    void (*send)(void* data, Source* source, const char* type, int descriptor);  ///< the descriptor is the listener's
    void (*cancelled)(void* data, Source* source);  ///< something else is on the clipboard now
};
struct OfferListener {
    void (*type)(void* data, Offer* offer, const char* type);
};

Device* deviceOf(Manager* manager, wl_seat* seat, const DeviceListener& listener, void* data);
void destroy(Device* device);

Source* createSource(Manager* manager, const SourceListener& listener, void* data);
void addType(Source* source, const char* type);
void destroy(Source* source);

/// Null empties the clipboard.
void setSelection(Device* device, Source* source);

void listenTo(Offer* offer, const OfferListener& listener, void* data);
/// The descriptor stays the caller's.
void receive(Offer* offer, const char* type, int descriptor);
void destroy(Offer* offer);

}  // namespace tavrelon::desktop::data_control
