#!/usr/bin/env bash
# Runs a command with the demo site (made by tools/demo/demo-site), or the one in ZENDORA_SITE_FOLDER, answering on ports
# 80 and 443. Inside the private network only. What was asked of it is in build/run/access.log, or in the folder that
# ZENDORA_OUTPUT names, and each report that it got in reports.log beside it.
#   tools/demo/demo-server.sh COMMAND [ARGUMENT...]
source "$(dirname "$0")/../common.sh"
source "$(dirname "$0")/../harness/nginx.sh"

site=${ZENDORA_SITE_FOLDER:-$output/demo/site}
mkdir -p "$output"
rm -f "$output/access.log" "$output/reports.log"
folder=$(make_work_folder)
trap 'stop_nginx; rm -rf "$folder"' EXIT
# nginx reads the body of a report only to hand it on, so it hands it to itself.
write_nginx_config "$folder" <<SERVERS
  log_format transfers '\$time_iso8601 \$request_method \$scheme://\$host\$request_uri range="\$http_range" \$status \$body_bytes_sent';
  log_format reports escape=none '\$request_body';
  server {
    listen 80;
    listen 443 ssl;
    include $folder/tls.conf;
    root $site;
    access_log $output/access.log transfers;
    client_body_buffer_size 1m;
    location = /slow {
      alias $site/packages/zendora-guide.txt;
      limit_rate 10k;
    }
    location = /play/files/repository.php {
      default_type text/xml;
      alias $site/manifest.xml;
    }
    location = /play/files/telemetry.php {
      access_log $output/access.log transfers;
      access_log $output/reports.log reports;
      proxy_pass http://127.0.0.1:8000;
    }
  }
  server {
    listen 127.0.0.1:8000;
    return 204;
  }
SERVERS
start_nginx "$folder" 443
export ZENDORA_DEMO_SERVER=$nginx_process ZENDORA_CERTIFICATE=$folder/certificate.pem
"$@"
