#include "desktop/wayland/protocol/data_control.h"

#include <wayland-client-protocol.h>

#include "desktop/wayland/protocol/requests.h"

namespace tavrelon::desktop::data_control {

namespace {

// What is sent, in the order by which the protocol numbers it.
enum ManagerRequest : std::uint32_t { createSourceRequest, getDevice, destroyManager };
enum DeviceRequest : std::uint32_t { setSelectionRequest, destroyDevice, setPrimarySelection };
enum SourceRequest : std::uint32_t { offerRequest, destroySource };
enum OfferRequest : std::uint32_t { receiveRequest, destroyOffer };

const wl_interface* noObjects[] = {nullptr, nullptr};

const wl_message sourceRequests[] = {{"offer", "s", noObjects}, {"destroy", "", noObjects}};
const wl_message sourceEvents[] = {{"send", "sh", noObjects}, {"cancelled", "", noObjects}};
const wl_interface sourceInterface{"zwlr_data_control_source_v1", 1, 2, sourceRequests, 2, sourceEvents};

const wl_message offerRequests[] = {{"receive", "sh", noObjects}, {"destroy", "", noObjects}};
const wl_message offerEvents[] = {{"offer", "s", noObjects}};
const wl_interface offerInterface{"zwlr_data_control_offer_v1", 1, 2, offerRequests, 1, offerEvents};

const wl_interface* aSource[] = {&sourceInterface};
const wl_interface* anOffer[] = {&offerInterface};
const wl_message deviceRequests[] = {
    {"set_selection", "?o", aSource}, {"destroy", "", noObjects}, {"set_primary_selection", "2?o", aSource}};
const wl_message deviceEvents[] = {{"data_offer", "n", anOffer},
                                   {"selection", "?o", anOffer},
                                   {"finished", "", noObjects},
                                   {"primary_selection", "2?o", anOffer}};
const wl_interface deviceInterface{"zwlr_data_control_device_v1", 2, 3, deviceRequests, 4, deviceEvents};

const wl_interface* aDeviceOfASeat[] = {&deviceInterface, &wl_seat_interface};
const wl_message managerRequests[] = {
    {"create_data_source", "n", aSource}, {"get_data_device", "no", aDeviceOfASeat}, {"destroy", "", noObjects}};

}  // namespace

const wl_interface managerInterface{"zwlr_data_control_manager_v1", 2, 3, managerRequests, 0, nullptr};

Device* deviceOf(Manager* manager, wl_seat* seat, const DeviceListener& listener, void* data) {
    auto* device = construct<Device>(manager, getDevice, deviceInterface, nullptr, seat);
    if (device)
        listen(device, listener, data);
    return device;
}

void destroy(Device* device) {
    requestDestruction(device, destroyDevice);
}

Source* createSource(Manager* manager, const SourceListener& listener, void* data) {
    auto* source = construct<Source>(manager, createSourceRequest, sourceInterface, nullptr);
    if (source)
        listen(source, listener, data);
    return source;
}

void addType(Source* source, const char* type) {
    request(source, offerRequest, type);
}

void destroy(Source* source) {
    requestDestruction(source, destroySource);
}

void setSelection(Device* device, Source* source) {
    request(device, setSelectionRequest, proxyOf(source));
}

void listenTo(Offer* offer, const OfferListener& listener, void* data) {
    listen(offer, listener, data);
}

void receive(Offer* offer, const char* type, int descriptor) {
    request(offer, receiveRequest, type, descriptor);
}

void destroy(Offer* offer) {
    requestDestruction(offer, destroyOffer);
}

}  // namespace tavrelon::desktop::data_control
