#include "Service/Upstream/Upstream.h"

#include "Service/Upstream/Instruction.h"
#include "Service/Upstream/UpstreamTransfer.h"

namespace lumarin::service {

std::unique_ptr<Translation> Upstream::begin(const TranslationRequest& request,
                                             Clock::time_point deadline) const {
    return std::make_unique<UpstreamTransfer>(configuration, connections, body(request), request.text.size(),
                                              deadline);
}

std::string Upstream::body(const TranslationRequest& request) const {
    nlohmann::json json = configuration.parameters;
    if (!configuration.model.empty())
        json["model"] = configuration.model;
    const std::string prompt =
        request.systemPrompt.empty() ? plainInstruction(request.targetLanguage) : request.systemPrompt;
    json["messages"] = {{{"role", "system"}, {"content", prompt}},
                        {{"role", "user"}, {"content", request.text}}};
    json["stream"] = true;
    return json.dump();
}

} // namespace lumarin::service
