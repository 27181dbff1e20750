#include "devservice/Certificate.h"

#include <QRandomGenerator>

#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <initializer_list>
#include <utility>

namespace devservice {
namespace {

using BioPtr = std::unique_ptr<BIO, OpenSslFree<BIO_free_all>>;
using ExtensionPtr = std::unique_ptr<X509_EXTENSION, OpenSslFree<X509_EXTENSION_free>>;
using Extensions = std::initializer_list<std::pair<int, const char*>>;

constexpr long daySeconds = 24 * 60 * 60;

bool addExtensions(X509* certificate, X509* issuer, Extensions extensions)
{
    X509V3_CTX context;
    X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
    for (const auto& [nid, value] : extensions) {
        const ExtensionPtr extension(X509V3_EXT_conf_nid(nullptr, &context, nid, value));
        if (!extension || X509_add_ext(certificate, extension.get(), -1) != 1) {
            return false;
        }
    }
    return true;
}

/// A certificate for @p key; @p issuer null makes one that signs itself.
X509Ptr issue(const char* commonName, EVP_PKEY* key, X509* issuer, EVP_PKEY* issuerKey, Extensions extensions)
{
    X509Ptr certificate(X509_new());
    X509* const x509 = certificate.get();
    X509* const authority = issuer ? issuer : x509;
    // 63 bits: positive, and never the same twice, which Schannel's certificate cache relies on.
    const quint64 serial = QRandomGenerator::system()->generate64() >> 1;
    const bool ok =
        x509 && ASN1_INTEGER_set_uint64(X509_get_serialNumber(x509), serial) == 1 &&
        X509_set_version(x509, X509_VERSION_3) == 1 &&
        X509_gmtime_adj(X509_getm_notBefore(x509), -daySeconds) != nullptr &&
        X509_gmtime_adj(X509_getm_notAfter(x509), 7 * daySeconds) != nullptr &&
        X509_set_pubkey(x509, key) == 1 &&
        X509_NAME_add_entry_by_txt(X509_get_subject_name(x509), "CN", MBSTRING_UTF8,
                                   reinterpret_cast<const unsigned char*>(commonName), -1, -1, 0) == 1 &&
        X509_set_issuer_name(x509, X509_get_subject_name(authority)) == 1 &&
        addExtensions(x509, authority, extensions) && X509_sign(x509, issuerKey, EVP_sha256()) > 0;
    return ok ? std::move(certificate) : nullptr;
}

QByteArray toPem(X509* certificate)
{
    const BioPtr memory(BIO_new(BIO_s_mem()));
    if (!memory || PEM_write_bio_X509(memory.get(), certificate) != 1) {
        return {};
    }
    char* data = nullptr;
    const long size = BIO_get_mem_data(memory.get(), &data);
    return QByteArray(data, static_cast<int>(size));
}

} // namespace

Certificate makeCertificate(const QByteArray& host)
{
    const KeyPtr authorityKey(EVP_EC_gen("P-256"));
    KeyPtr key(EVP_EC_gen("P-256"));
    if (!authorityKey || !key) {
        return {};
    }
    const X509Ptr authority =
        issue("Velstrand development authority", authorityKey.get(), nullptr, authorityKey.get(),
              {{NID_basic_constraints, "critical,CA:TRUE,pathlen:0"},
               {NID_key_usage, "critical,keyCertSign,cRLSign"},
               {NID_subject_key_identifier, "hash"}});
    if (!authority) {
        return {};
    }
    const QByteArray names = "DNS:" + host + ",IP:127.0.0.1";
    X509Ptr certificate = issue(host.constData(), key.get(), authority.get(), authorityKey.get(),
                                {{NID_basic_constraints, "critical,CA:FALSE"},
                                 {NID_key_usage, "critical,digitalSignature"},
                                 {NID_ext_key_usage, "serverAuth"},
                                 {NID_subject_key_identifier, "hash"},
                                 {NID_authority_key_identifier, "keyid:always"},
                                 {NID_subject_alt_name, names.constData()}});
    return {std::move(key), std::move(certificate), toPem(authority.get())};
}

} // namespace devservice
