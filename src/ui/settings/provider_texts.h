#pragma once

#include <array>

#include "ui/dashboard/page_model.h"

namespace tavrelon::ui {

/// Every text of the providers page.
inline constexpr std::array<PageText, 44> providerTexts{{
    {u"title", u"Providers", u"服务提供商"},
    {u"subtitle", u"Choose the active vision provider and customize service configs.",
     u"选择当前视觉提供商并配置服务。"},

    {u"test", u"Test", u"测试"},
    {u"testing", u"Asking…", u"正在询问…"},
    {u"testHint", u"Asks the chosen service one short question.", u"向所选服务提一个简短的问题。"},
    {u"testAnswer", u"%1 answered in %2 s: %3", u"%1 用 %2 秒回答：%3"},

    {u"nvidiaHint", u"Local NVIDIA support is mutually exclusive with Ollama Vision.",
     u"本地 NVIDIA 支持与 Ollama Vision 互斥。"},
    {u"enableNvidia", u"Enable NVIDIA Local", u"启用本地 NVIDIA"},
    {u"enableNvidiaSubtitle", u"Use your NVIDIA API key", u"使用您的 NVIDIA API 密钥"},
    {u"localApi", u"Local API", u"本地 API"},
    {u"requiredKey", u"API Key (required)", u"API 密钥（必填）"},
    {u"optionalKey", u"API Key (optional)", u"API 密钥（可选）"},
    {u"keyElsewhere", u"The stored key was entered for another address and is not sent to this one. Enter it again.",
     u"已保存的密钥是为另一个地址输入的，不会发送到此地址。请重新输入。"},
    {u"keyUnencrypted", u"The key is not sent: this address has no encryption. Use one that begins with https://.",
     u"密钥不会发送：此地址未加密。请使用以 https:// 开头的地址。"},
    {u"nvidiaKeyMissing", u"API key is required for local NVIDIA support.", u"本地 NVIDIA 支持需要 API 密钥。"},
    {u"getNvidiaKey", u"Get an API key at", u"获取 API 密钥："},

    {u"ollamaHint", u"Ollama Vision and NVIDIA Local are mutually exclusive.", u"Ollama Vision 与本地 NVIDIA 互斥。"},
    {u"enableOllama", u"Enable Ollama Vision", u"启用 Ollama Vision"},
    {u"enableOllamaSubtitle", u"Overrides built-in vision models", u"覆盖内置视觉模型"},
    {u"mode", u"Mode", u"模式"},
    {u"cloud", u"Cloud", u"云端"},
    {u"local", u"Local", u"本地"},
    {u"modeHint", u"Cloud and Local are mutually exclusive.", u"云端和本地模式互斥。"},
    {u"model", u"Model", u"模型"},
    {u"endpoint", u"Endpoint", u"端点"},
    {u"cloudKeyMissing", u"API key is required for cloud mode.", u"云端模式需要 API 密钥。"},
    {u"cloudModelMissing", u"Select a cloud model to continue.", u"请选择云端模型以继续。"},
    {u"selectModel", u"Select model", u"选择模型"},
    {u"loadingModels", u"Loading models...", u"加载模型中..."},
    {u"noModels", u"No models loaded", u"未加载模型"},
    {u"refreshModels", u"Refresh Models", u"刷新模型"},

    {u"pollinationsHint", u"If disabled, Tavrelon uses the built-in Pollinations service.",
     u"未启用时使用内置 Pollinations 服务。"},
    {u"enablePollinations", u"Use Custom Pollinations", u"启用自定义 Pollinations"},
    {u"enablePollinationsSubtitle", u"Bring your own key, models, and endpoint", u"使用自己的 key、模型与服务地址"},
    {u"staysHere", u"Requests stay on this machine", u"请求留在本机"},
    {u"staysWithGateway", u"Requests stay with this server", u"请求只发往此服务器"},
    {u"staysWithGatewaySubtitle", u"No other service is asked when this server does not answer",
     u"此服务器无响应时不询问其他服务"},
    {u"baseURL", u"Base URL", u"基础地址"},
    {u"baseURLMissing", u"Base URL is required for custom Pollinations.", u"自定义 Pollinations 需要基础地址。"},
    {u"imageModel", u"Image Model", u"图片模型"},
    {u"imageModelMissing", u"Image model is required for custom Pollinations.", u"自定义 Pollinations 需要图片模型。"},
    {u"visionModel", u"Vision Model", u"视觉模型"},
    {u"visionModelMissing", u"Vision model is required for custom Pollinations.",
     u"自定义 Pollinations 需要视觉模型。"},
    {u"getPollinationsKey", u"Get key at", u"获取密钥："},
}};

}  // namespace tavrelon::ui
