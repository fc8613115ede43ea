/// Files that carry the signature of whoever made them.
///
///    <product name="Foundation" expires="2031-01-01"/>
///    Signature: k3Jw0...==
///
/// The signature stands in the data itself, at its end: behind the last line that begins with
/// "Signature: ", in Base64, whose text may go on over further lines. What it signs is everything
/// before the line break in front of that line.
#pragma once

#include <ORLFoundation/platform/crypto/SecKey.h>
#include <ORLFoundation/platform/object/NSError.h>
#include <ORLFoundation/platform/value/NSData.h>
#include <ORLFoundation/platform/value/NSTypes.h>

namespace ORLFoundation {

/// How a signature is encoded: RSA with PKCS#1 v1.5 padding over a digest of the text. SHA-1 is for
/// signatures that exist; texts of equal SHA-1 digest can be made.
enum ORLFSignatureEncoding : NSUInteger {
  ORLFSignatureEncodingRSASHA256 = 0,
  ORLFSignatureEncodingRSASHA1 = 1,
};

/// Codes of `ORLFSecurityErrorDomain`.
enum ORLFSignatureError : NSInteger {
  ORLFSignatureErrorMissing = 1,   ///< The data carries no signature, and it is not optional.
  ORLFSignatureErrorKey = 2,       ///< The key is nil or has fewer than 2048 bits.
  ORLFSignatureErrorEncoding = 3,  ///< No encoding that is known.
  ORLFSignatureErrorInvalid = 4,   ///< The signature is not the key's over the data.
};

/// `orlfVerifySignatureWithKey:encoding:optional:error:`  Whether the data carries a signature of
/// the key over it, under `encoding` and no other. Data without a signature passes only when
/// `optional`; one that is there has to hold, whatever `optional` says. False, and an error of
/// `ORLFSecurityErrorDomain`, in all other cases: nothing that cannot be checked passes.
[[nodiscard]] bool orlfVerifySignatureWithKey(const NSData& data, const SecKey* key,
                                              ORLFSignatureEncoding encoding, bool optional,
                                              NSErrorSlot error = nullptr);

}  // namespace ORLFoundation
