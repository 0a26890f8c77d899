#pragma once

#include "platform/workspace.h"
#include "ui/dashboard/page_model.h"
#include "ui/settings/found_servers.h"
#include "ui/settings/ollama_cloud_models.h"
#include "ui/settings/service_trial.h"
#include "ui/settings/taught_model.h"

namespace tavrelon::ui {

/// The providers page: which service answers requests with a picture, and how it is reached. Of the three services at
/// most one is on; each change is stored and used by the next request. What the user types is kept as typed, whatever
/// is missing in it; a store that refuses it loses it at the end of the program. Main thread.
class ProviderSettingsModel : public PageModel {
    Q_OBJECT
    Q_PROPERTY(QString selection READ selection WRITE select NOTIFY selectionChanged)
    Q_PROPERTY(tavrelon::ui::OllamaCloudModels* cloudModels READ cloudModels CONSTANT)
    Q_PROPERTY(tavrelon::ui::TaughtModel* taught READ taught CONSTANT)
    Q_PROPERTY(tavrelon::ui::FoundServers* found READ found CONSTANT)
    Q_PROPERTY(tavrelon::ui::ServiceTrial* trial READ trial CONSTANT)

    Q_PROPERTY(bool enableNvidiaLocal READ enableNvidiaLocal WRITE setEnableNvidiaLocal NOTIFY changed)
    Q_PROPERTY(bool enableOllamaVision READ enableOllamaVision WRITE setEnableOllamaVision NOTIFY changed)
    Q_PROPERTY(
        bool enableCustomPollinations READ enableCustomPollinations WRITE setEnableCustomPollinations NOTIFY changed)

    Q_PROPERTY(QString nvidiaApiKey READ nvidiaApiKey WRITE setNvidiaApiKey NOTIFY changed)
    Q_PROPERTY(QString ollamaMode READ ollamaMode WRITE setOllamaMode NOTIFY changed)
    Q_PROPERTY(QString ollamaCloudModel READ ollamaCloudModel WRITE setOllamaCloudModel NOTIFY changed)
    Q_PROPERTY(QString ollamaCloudApiKey READ ollamaCloudApiKey WRITE setOllamaCloudApiKey NOTIFY changed)
    Q_PROPERTY(QString ollamaLocalModel READ ollamaLocalModel WRITE setOllamaLocalModel NOTIFY changed)
    Q_PROPERTY(QString ollamaLocalEndpoint READ ollamaLocalEndpoint WRITE setOllamaLocalEndpoint NOTIFY changed)
    Q_PROPERTY(QString ollamaLocalApiKey READ ollamaLocalApiKey WRITE setOllamaLocalApiKey NOTIFY changed)
    Q_PROPERTY(QString pollinationsBaseURL READ pollinationsBaseURL WRITE setPollinationsBaseURL NOTIFY changed)
    Q_PROPERTY(
        QString pollinationsImageModel READ pollinationsImageModel WRITE setPollinationsImageModel NOTIFY changed)
    Q_PROPERTY(
        QString pollinationsVisionModel READ pollinationsVisionModel WRITE setPollinationsVisionModel NOTIFY changed)
    Q_PROPERTY(QString pollinationsApiKey READ pollinationsApiKey WRITE setPollinationsApiKey NOTIFY changed)
    Q_PROPERTY(bool isGatewayLocal READ isGatewayLocal NOTIFY changed)
    Q_PROPERTY(bool staysWithGateway READ staysWithGateway WRITE setStaysWithGateway NOTIFY changed)
    Q_PROPERTY(QString ollamaLocalKeyNote READ ollamaLocalKeyNote NOTIFY changed)
    Q_PROPERTY(QString pollinationsKeyNote READ pollinationsKeyNote NOTIFY changed)

    Q_PROPERTY(bool nvidiaKeyMissing READ nvidiaKeyMissing NOTIFY changed)
    Q_PROPERTY(bool cloudKeyMissing READ cloudKeyMissing NOTIFY changed)
    Q_PROPERTY(bool cloudModelMissing READ cloudModelMissing NOTIFY changed)
    Q_PROPERTY(bool baseURLMissing READ baseURLMissing NOTIFY changed)
    Q_PROPERTY(bool imageModelMissing READ imageModelMissing NOTIFY changed)
    Q_PROPERTY(bool visionModelMissing READ visionModelMissing NOTIFY changed)

    Q_PROPERTY(QString defaultOllamaEndpoint READ defaultOllamaEndpoint CONSTANT)
    Q_PROPERTY(QString defaultPollinationsBaseURL READ defaultPollinationsBaseURL CONSTANT)
    Q_PROPERTY(QString nvidiaKeyPortal READ nvidiaKeyPortal CONSTANT)
    Q_PROPERTY(QString pollinationsKeyPortal READ pollinationsKeyPortal CONSTANT)

 public:
    /// The services that the page edits. They outlive it.
    struct Services {
        async::MainLoop& mainLoop;
        persistence::StorageManager& storage;
        generation::PollinationsService& pollinations;
        platform::Workspace& workspace;
        platform::HttpSession& httpSession;
    };

    explicit ProviderSettingsModel(Services services);

    OllamaCloudModels* cloudModels() { return &cloudModels_; }
    TaughtModel* taught() { return &taught_; }
    FoundServers* found() { return &found_; }
    ServiceTrial* trial() { return &trial_; }

    /// The section on view: "nvidia", "ollama" or "pollinations". It says nothing of what is in use.
    QString selection() const { return selection_; }
    void select(const QString& provider);

    // Turning one on turns the others off; turning one off touches only that one.
    bool enableNvidiaLocal() const { return settings().enableNvidiaLocal; }
    void setEnableNvidiaLocal(bool enabled) { enable(&persistence::AppSettings::enableNvidiaLocal, enabled); }
    bool enableOllamaVision() const { return settings().enableOllamaVision; }
    void setEnableOllamaVision(bool enabled) { enable(&persistence::AppSettings::enableOllamaVision, enabled); }
    bool enableCustomPollinations() const { return settings().enableCustomPollinations; }
    void setEnableCustomPollinations(bool enabled) {
        enable(&persistence::AppSettings::enableCustomPollinations, enabled);
    }
    bool isGatewayLocal() const { return configuration().asksLocalServer(); }
    bool staysWithGateway() const { return configuration().asksGatewayOnly(); }
    void setStaysWithGateway(bool stays);

    QString ollamaMode() const;
    void setOllamaMode(const QString& mode) { setField(&persistence::AppSettings::ollamaMode, mode); }
    QString ollamaCloudModel() const { return settings().ollamaCloudModel; }
    void setOllamaCloudModel(const QString& typed) { setField(&persistence::AppSettings::ollamaCloudModel, typed); }
    QString ollamaLocalModel() const { return settings().ollamaLocalModel; }
    void setOllamaLocalModel(const QString& typed) { setField(&persistence::AppSettings::ollamaLocalModel, typed); }
    QString ollamaLocalEndpoint() const { return settings().ollamaLocalEndpoint; }
    void setOllamaLocalEndpoint(const QString& typed) {
        setField(&persistence::AppSettings::ollamaLocalEndpoint, typed);
    }
    QString pollinationsBaseURL() const { return settings().pollinationsBaseURL; }
    void setPollinationsBaseURL(const QString& typed) {
        setField(&persistence::AppSettings::pollinationsBaseURL, typed);
    }
    QString pollinationsImageModel() const { return settings().pollinationsImageModel; }
    void setPollinationsImageModel(const QString& typed) {
        setField(&persistence::AppSettings::pollinationsImageModel, typed);
    }
    QString pollinationsVisionModel() const { return settings().pollinationsVisionModel; }
    void setPollinationsVisionModel(const QString& typed) {
        setField(&persistence::AppSettings::pollinationsVisionModel, typed);
    }

    QString nvidiaApiKey() const { return storage().keys().nvidia; }
    void setNvidiaApiKey(const QString& typed);
    QString ollamaCloudApiKey() const { return storage().keys().ollamaCloud; }
    void setOllamaCloudApiKey(const QString& typed);
    // A key that was typed for another server is not shown: it is asked for anew, and good again when the address is.
    QString ollamaLocalApiKey() const { return shownKey(storage().keys().ollamaLocal, ollamaAddress()); }
    void setOllamaLocalApiKey(const QString& typed);
    QString pollinationsApiKey() const { return shownKey(storage().keys().pollinations, pollinationsAddress()); }
    void setPollinationsApiKey(const QString& typed);

    // The name of the text that tells why a key is not sent; empty while it is, or while there is none.
    QString ollamaLocalKeyNote() const { return keyNote(storage().keys().ollamaLocal, ollamaAddress()); }
    QString pollinationsKeyNote() const { return keyNote(storage().keys().pollinations, pollinationsAddress()); }

    // What is shown below a field; nothing is refused for it.
    bool nvidiaKeyMissing() const;
    bool cloudKeyMissing() const;
    bool cloudModelMissing() const;
    bool baseURLMissing() const;
    bool imageModelMissing() const;
    bool visionModelMissing() const;

    static QString defaultOllamaEndpoint() { return persistence::defaultSettings().ollamaLocalEndpoint; }
    static QString defaultPollinationsBaseURL() { return persistence::defaultSettings().pollinationsBaseURL; }

    // Where the user gets a key, and its opening in the browser.
    static QString nvidiaKeyPortal();
    static QString pollinationsKeyPortal();
    Q_INVOKABLE void openNvidiaKeyPortal();
    Q_INVOKABLE void openPollinationsKeyPortal();

    Q_SIGNAL void selectionChanged();

 private:
    /// As the service will have it once it has heard of the last change.
    generation::ServiceConfiguration configuration() const;

    void enable(bool persistence::AppSettings::* provider, bool enabled);
    void setField(QString persistence::AppSettings::* field, const QString& typed);
    template <typename Key>
    void storeKey(Key persistence::ServiceKeys::* key, const Key& typed) {
        storage().changeKeys([&](persistence::ServiceKeys& keys) { keys.*key = typed; });
        Q_EMIT changed();
    }

    QString ollamaAddress() const;
    QString pollinationsAddress() const;
    static QString shownKey(const persistence::BoundKey& key, const QString& address);
    static QString keyNote(const persistence::BoundKey& key, const QString& address);

    Services services_;
    QString selection_;
    OllamaCloudModels cloudModels_;
    FoundServers found_{{services_.mainLoop, storage(), services_.pollinations, services_.httpSession}};
    ServiceTrial trial_{services_.mainLoop, services_.pollinations, [this] { return language(); }};
    TaughtModel taught_{storage(), {persistence::Taught::AdaptivePrompt, persistence::Taught::CloneProfile}};
};

}  // namespace tavrelon::ui
