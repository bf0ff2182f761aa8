#!/usr/bin/env bash
# Signs files in place when the environment names a certificate; prints "unsigned" otherwise.
#   KEL_SIGN_CERTIFICATES  file with the certificate and its chain (PEM)
#   KEL_SIGN_KEY           file with the key, or a PKCS#11 address of it
#   KEL_SIGN_CERTIFICATE   PKCS#11 address of the certificate, instead of the file
#   KEL_SIGN_MODULE        the PKCS#11 module, if the key is in a token
#   KEL_SIGN_PIN_FILE      file with the key's passphrase or the token's PIN
#   KEL_SIGN_TIMESTAMP     address of a time-stamp service; without one, signatures expire with the certificate
set -euo pipefail

if [ -z "${KEL_SIGN_KEY:-}" ]; then
  for file in "$@"; do echo "unsigned: $file"; done
  exit 0
fi

options=(-h sha256 -n Detection -key "$KEL_SIGN_KEY")
[ -z "${KEL_SIGN_CERTIFICATES:-}" ] || options+=(-certs "$KEL_SIGN_CERTIFICATES")
[ -z "${KEL_SIGN_CERTIFICATE:-}" ] || options+=(-pkcs11cert "$KEL_SIGN_CERTIFICATE")
[ -z "${KEL_SIGN_MODULE:-}" ] || options+=(-pkcs11module "$KEL_SIGN_MODULE")
[ -z "${KEL_SIGN_PIN_FILE:-}" ] || options+=(-readpass "$KEL_SIGN_PIN_FILE")
[ -z "${KEL_SIGN_TIMESTAMP:-}" ] || options+=(-ts "$KEL_SIGN_TIMESTAMP")
for file in "$@"; do
  signed=$(mktemp "$file.XXXXXX")
  rm "$signed"  # the tool writes only new files
  osslsigncode sign "${options[@]}" -in "$file" -out "$signed" >/dev/null
  mv "$signed" "$file"
  echo "signed: $file"
done
