#pragma once

#include <QByteArray>

#include <openssl/ssl.h>

#include <memory>

namespace devservice {

template <auto Free>
struct OpenSslFree {
    template <typename T>
    void operator()(T* object) const
    {
        Free(object);
    }
};

using KeyPtr = std::unique_ptr<EVP_PKEY, OpenSslFree<EVP_PKEY_free>>;
using X509Ptr = std::unique_ptr<X509, OpenSslFree<X509_free>>;

/// A certificate for one host and 127.0.0.1, valid from yesterday for a week, and the authority that signed
/// it.
struct Certificate {
    KeyPtr key;
    X509Ptr certificate;
    /// The authority's certificate, which clients must trust.
    QByteArray authorityPem;

    bool isValid() const { return key && certificate && !authorityPem.isEmpty(); }
};

/// Makes both with fresh P-256 keys; isValid() tells whether it worked.
Certificate makeCertificate(const QByteArray& host = "localhost");

} // namespace devservice
