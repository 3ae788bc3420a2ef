#include "tests/http/Certificates.h"

#include <cstdio>
#include <memory>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509.h>
#include <openssl/x509v3.h>
#include <stdexcept>
#include <sys/stat.h>

namespace test {
namespace {

using Key = std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)>;
using Certificate = std::unique_ptr<X509, decltype(&X509_free)>;
using File = std::unique_ptr<std::FILE, decltype(&std::fclose)>;

constexpr long kDay = 24L * 60 * 60;

void check(bool isDone, const char* what) {
  if (!isDone) {
    throw std::runtime_error(std::string("OpenSSL failed to ") + what);
  }
}

File openFile(const std::string& path) {
  File file(std::fopen(path.c_str(), "w"), &std::fclose);
  check(file != nullptr, "open a file");
  return file;
}

Key makeKey(const char* curve = "P-256") {
  Key key(EVP_EC_gen(curve), &EVP_PKEY_free);
  check(key != nullptr, "make a key");
  return key;
}

void addExtension(X509* certificate, X509* issuer, int kind, const char* value) {
  X509V3_CTX context;
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, kind, value);
  check(extension != nullptr, "make an extension");
  check(X509_add_ext(certificate, extension, -1) == 1, "add an extension");
  X509_EXTENSION_free(extension);
}

struct Subject {
  const char* name;
  const char* alternativeNames;  // null for an authority
  long firstDay;                 // from today
  long lastDay;
};

// Null for `issuer` makes a certificate that signs itself.
Certificate makeCertificate(const Subject& subject, EVP_PKEY* key, X509* issuer,
                            EVP_PKEY* issuerKey) {
  static long s_serial = 0;
  Certificate certificate(X509_new(), &X509_free);
  check(certificate != nullptr, "make a certificate");
  X509_set_version(certificate.get(), X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate.get()), ++s_serial);
  X509_gmtime_adj(X509_getm_notBefore(certificate.get()), subject.firstDay * kDay);
  X509_gmtime_adj(X509_getm_notAfter(certificate.get()), subject.lastDay * kDay);
  X509_NAME* name = X509_get_subject_name(certificate.get());
  X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(subject.name), -1, -1, 0);
  X509* const signer = issuer != nullptr ? issuer : certificate.get();
  X509_set_issuer_name(certificate.get(), X509_get_subject_name(signer));
  X509_set_pubkey(certificate.get(), key);
  if (subject.alternativeNames != nullptr) {
    addExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:FALSE");
    addExtension(certificate.get(), signer, NID_subject_alt_name, subject.alternativeNames);
  } else {
    addExtension(certificate.get(), signer, NID_basic_constraints, "critical,CA:TRUE");
    addExtension(certificate.get(), signer, NID_key_usage, "critical,keyCertSign,cRLSign");
  }
  check(X509_sign(certificate.get(), issuerKey, EVP_sha256()) > 0, "sign a certificate");
  return certificate;
}

void writeCertificates(const std::string& path, std::initializer_list<X509*> certificates) {
  const File file = openFile(path);
  check(fchmod(fileno(file.get()), S_IRUSR | S_IWUSR | S_IRGRP | S_IROTH) == 0, "publish a file");
  for (X509* const certificate : certificates) {
    check(PEM_write_X509(file.get(), certificate) == 1, "write a certificate");
  }
}

void writeKey(const std::string& path, EVP_PKEY* key, const char* passphrase) {
  const File file = openFile(path);
  check(fchmod(fileno(file.get()), S_IRUSR | S_IWUSR) == 0, "keep a key to its owner");
  check(PEM_write_PKCS8PrivateKey(file.get(), key,
                                  passphrase != nullptr ? EVP_aes_256_cbc() : nullptr, nullptr, 0,
                                  nullptr, const_cast<char*>(passphrase)) == 1,
        "write a key");
}

constexpr const char* kOwnNames = "DNS:localhost,IP:127.0.0.1,IP:::1";

}  // namespace

Certificates::Certificates() {
  const Key authorityKey = makeKey();
  const Certificate authority = makeCertificate({"Test authority", nullptr, -1, 30},
                                                authorityKey.get(), nullptr, authorityKey.get());
  writeCertificates(authorityFile(), {authority.get()});

  const Key key = makeKey();
  writeKey(keyFile(), key.get(), nullptr);
  writeKey(encryptedKeyFile(), key.get(), "passphrase");
  const auto writeServer = [&](const std::string& path, const Subject& subject) {
    const Certificate server =
        makeCertificate(subject, key.get(), authority.get(), authorityKey.get());
    writeCertificates(path, {server.get(), authority.get()});
  };
  writeServer(certificateFile(), {"localhost", kOwnNames, -1, 30});
  writeServer(otherNameFile(), {"elsewhere.example", "DNS:elsewhere.example", -1, 30});
  writeServer(expiredFile(), {"localhost", kOwnNames, -2, -1});

  const Key weakKey = makeKey("secp112r1");
  const Certificate weak =
      makeCertificate({"Weak authority", nullptr, -1, 30}, weakKey.get(), nullptr, weakKey.get());
  const Certificate server = makeCertificate({"localhost", kOwnNames, -1, 30}, key.get(),
                                             authority.get(), authorityKey.get());
  writeCertificates(weakChainFile(), {server.get(), weak.get()});

  const Key strangerKey = makeKey();
  const Certificate stranger = makeCertificate({"Test stranger", nullptr, -1, 30},
                                               strangerKey.get(), nullptr, strangerKey.get());
  writeCertificates(strangerFile(), {stranger.get()});
  writeKey(strangerKeyFile(), strangerKey.get(), nullptr);
}

const Certificates& sharedCertificates() {
  static const Certificates s_certificates;
  return s_certificates;
}

}  // namespace test
