# Addresses of the model services and the keys a distributor may build in. Keys are empty by default.
set(TAVRELON_POLLINATIONS_BASE_URL "https://gen.pollinations.ai" CACHE STRING "Pollinations gateway base URL")
set(TAVRELON_GLM_BASE_URL "https://open.bigmodel.cn/api/paas/v4" CACHE STRING "GLM API base URL")
set(TAVRELON_NVIDIA_CHAT_URL "https://integrate.api.nvidia.com/v1/chat/completions" CACHE STRING
  "NVIDIA chat completions URL")
set(TAVRELON_OLLAMA_CLOUD_URL "https://ollama.com" CACHE STRING "Ollama cloud base URL")
set(TAVRELON_OLLAMA_LOCAL_CHAT_URL "http://localhost:11434/api/chat" CACHE STRING "Default local Ollama chat URL")
set(TAVRELON_CLONE_API_BASE_URL "http://127.0.0.1:3002" CACHE STRING "Default clone service endpoint")
set(TAVRELON_DONATION_URL "" CACHE STRING "Page that the dashboard opens for donations; none: it offers no such link")
set(TAVRELON_POLLINATIONS_KEY "" CACHE STRING "Built-in Pollinations key")
set(TAVRELON_GLM_KEY "" CACHE STRING "Built-in GLM key")
set(TAVRELON_NVIDIA_KEY "" CACHE STRING "Built-in NVIDIA key")
configure_file(${CMAKE_SOURCE_DIR}/cmake/service_endpoints_config.h.in
  ${CMAKE_BINARY_DIR}/generated/service_endpoints_config.h @ONLY)
