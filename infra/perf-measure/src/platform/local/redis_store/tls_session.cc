// SPDX-License-Identifier: Apache-2.0
// TLS through OpenSSL: the server's certificate is always verified.
#include "platform/local/redis_store/tls_session.h"

#include <algorithm>
#include <arpa/inet.h>
#include <climits>
#include <openssl/err.h>
#include <openssl/x509v3.h>

namespace redis_store {
namespace {

std::string last_error() {
    const unsigned long code = ERR_peek_last_error();
    const char *const text = code != 0 ? ERR_reason_error_string(code) : nullptr;
    ERR_clear_error();
    return text != nullptr ? text : "TLS failed";
}

pm_error load_certificates(SSL_CTX *context, const redis_url &url) {
    const bool trusted = url.ca_file.empty() ? SSL_CTX_set_default_verify_paths(context) == 1
                                             : SSL_CTX_load_verify_file(context, url.ca_file.c_str()) == 1;
    if (!trusted) {
        return pm_error("cannot read the trusted certificates" +
                        (url.ca_file.empty() ? std::string() : " in " + url.ca_file) + ": " + last_error());
    }
    if (url.certificate_file.empty()) {
        return {};
    }
    if (SSL_CTX_use_certificate_chain_file(context, url.certificate_file.c_str()) != 1) {
        return pm_error("cannot use the certificate in " + url.certificate_file + ": " + last_error());
    }
    if (SSL_CTX_use_PrivateKey_file(context, url.key_file.c_str(), SSL_FILETYPE_PEM) != 1) {
        return pm_error("cannot use the key in " + url.key_file + ": " + last_error());
    }
    return {};
}

bool is_address(const std::string &host) {
    unsigned char address[sizeof(in6_addr)];
    return ::inet_pton(AF_INET, host.c_str(), address) == 1 || ::inet_pton(AF_INET6, host.c_str(), address) == 1;
}

// The name that the certificate must be for; a server is told the name that is meant, but no address (RFC 6066).
bool expect_host(SSL *session, const std::string &host) {
    if (is_address(host)) {
        return X509_VERIFY_PARAM_set1_ip_asc(SSL_get0_param(session), host.c_str()) == 1;
    }
    return SSL_set1_host(session, host.c_str()) == 1 && SSL_set_tlsext_host_name(session, host.c_str()) == 1;
}

}  // namespace

pm_error tls_session::prepare(const redis_url &url, const std::string &host, int socket) {
    ERR_clear_error();
    context_.reset(SSL_CTX_new(TLS_client_method()));
    if (context_ == nullptr || SSL_CTX_set_min_proto_version(context_.get(), TLS1_2_VERSION) != 1) {
        return pm_error(last_error());
    }
    SSL_CTX_set_verify(context_.get(), SSL_VERIFY_PEER, nullptr);
    SSL_CTX_set_mode(context_.get(), SSL_MODE_ENABLE_PARTIAL_WRITE | SSL_MODE_ACCEPT_MOVING_WRITE_BUFFER);
    if (pm_error error = load_certificates(context_.get(), url)) {
        return error;
    }
    session_.reset(SSL_new(context_.get()));
    if (session_ == nullptr || !expect_host(session_.get(), host) || SSL_set_fd(session_.get(), socket) != 1) {
        return pm_error(last_error());
    }
    return {};
}

int tls_session::connect() {
    ERR_clear_error();
    return SSL_connect(session_.get());
}

int tls_session::read(char *buffer, std::size_t size) {
    ERR_clear_error();
    return SSL_read(session_.get(), buffer, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
}

int tls_session::write(const char *bytes, std::size_t size) {
    ERR_clear_error();
    return SSL_write(session_.get(), bytes, static_cast<int>(std::min<std::size_t>(size, INT_MAX)));
}

std::string tls_session::reason() const {
    const long verified = SSL_get_verify_result(session_.get());
    return verified != X509_V_OK ? X509_verify_cert_error_string(verified) : last_error();
}

}  // namespace redis_store
