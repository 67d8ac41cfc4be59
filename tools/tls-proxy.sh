#!/usr/bin/env bash
# Runs a command with port 443 answering for port 80, through TLS with a self-signed certificate. Inside the private
# network only.
#   tools/tls-proxy.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/common.sh"

[ "${ZENDORA_PRIVATE_NETWORK:-}" = inside ] || die "this runs inside tools/private-network.sh only"
folder=$(mktemp -d -p "$build" tls-proxy.XXXXXX)
openssl req -x509 -newkey rsa:2048 -nodes -days 30 -subj /CN=zendora.example \
  -keyout "$folder/key.pem" -out "$folder/certificate.pem" 2>/dev/null
cat >"$folder/nginx.conf" <<CONFIG
user root;
master_process off;
daemon off;
pid $folder/nginx.pid;
error_log $folder/error.log;
events {}
http {
  access_log off;
  server {
    listen 443 ssl;
    ssl_certificate $folder/certificate.pem;
    ssl_certificate_key $folder/key.pem;
    location / {
      proxy_pass http://127.0.0.1:80;
      proxy_http_version 1.1;
      proxy_buffering off;
      proxy_request_buffering off;
      proxy_set_header Host \$host;
      proxy_set_header Connection "";
    }
  }
}
CONFIG
nginx -c "$folder/nginx.conf" -p "$folder" 2>/dev/null &
proxy=$!
trap 'kill "$proxy" 2>/dev/null || true; wait "$proxy" 2>/dev/null || true; rm -rf "$folder"' EXIT
while ! (exec 4<>/dev/tcp/127.0.0.1/443) 2>/dev/null; do
  kill -0 "$proxy" 2>/dev/null || die "nginx did not start: $(cat "$folder/error.log")"
  sleep 0.05
done
"$@"
