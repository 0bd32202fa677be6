#include "line/plan/Order.h"

#include "programs/Text.h"

namespace {

Json optionsJson(const OptionBytes &options) {
    Json bytes = Json::object();
    for (const auto &option : options.bytes)
        bytes[option.first] = option.second.value;
    return bytes;
}

Json otpJson(const std::vector<OtpBlock> &blocks) {
    Json list = Json::array();
    for (const OtpBlock &block : blocks)
        list.push_back(
            {{"block", block.number}, {"bytes", hexOf(block.bytes.data(), block.bytes.size())}, {"lock", block.lock}});
    return list;
}

} // namespace

Json makeOrder(const Job &job, const Plan &plan, const Json &link) {
    return {{"do", "make"},
            {"chip", job.chip},
            {"link", link},
            {"eraseProtected", job.eraseProtected},
            {"sectors", plan.sectors},
            {"verify", nameOf(job.verify)},
            {"options", optionsJson(job.options)},
            {"protect", job.options.protect},
            {"otp", otpJson(job.otp)},
            {"access", nameOf(job.access)},
            {"run", job.run}};
}

Json goOrder(const Runs &image) {
    Json runs = Json::array();
    for (const Run &run : image)
        runs.push_back({{"at", run.address}, {"length", run.bytes.size()}});
    return {{"do", "go"}, {"image", std::move(runs)}};
}
