#!/usr/bin/env bash
# Runs a command with port 443 answering for port 80, through TLS with a self-signed certificate. Inside the private
# network only.
#   tools/harness/tls-proxy.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"
source "$(dirname "$0")/nginx.sh"

folder=$(make_work_folder)
trap 'stop_nginx; rm -rf "$folder"' EXIT
write_nginx_config "$folder" <<SERVERS
  server {
    listen 443 ssl;
    include $folder/tls.conf;
    client_max_body_size 0;
    location / {
      proxy_pass http://127.0.0.1:80;
      proxy_http_version 1.1;
      proxy_buffering off;
      proxy_request_buffering off;
      proxy_set_header Host \$host;
      proxy_set_header Connection "";
    }
  }
SERVERS
start_nginx "$folder" 443
"$@"
