# An nginx of our own, all of whose files lie in one folder. Source it after common.sh, don't run it. Inside the private
# network only, where the ports are free and a certificate for our host hurts nobody.
# shellcheck shell=bash

# Writes FOLDER/nginx.conf around the servers that standard input describes, with a self-signed certificate in
# FOLDER/tls.conf for those that include it.
#   write_nginx_config FOLDER <SERVERS
write_nginx_config() {
  local folder=$1 kind
  [ "${ZENDORA_PRIVATE_NETWORK:-}" = inside ] || die "this runs inside tools/harness/private-network.sh only"
  openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 30 -subj /CN=zendora.example \
    -addext subjectAltName=DNS:zendora.example,DNS:mirror.zendora.example \
    -keyout "$folder/key.pem" -out "$folder/certificate.pem" 2>/dev/null
  printf 'ssl_certificate %s/certificate.pem;\nssl_certificate_key %s/key.pem;\n' "$folder" "$folder" >"$folder/tls.conf"
  {
    cat <<CONFIG
user root;
master_process off;
daemon off;
pid $folder/nginx.pid;
error_log $folder/error.log;
events {}
http {
  access_log off;
CONFIG
    for kind in client_body proxy fastcgi uwsgi scgi; do
      echo "  ${kind}_temp_path $folder/$kind;"
    done
    cat
    echo "}"
  } >"$folder/nginx.conf"
}

# Starts nginx and waits until it answers on a port; its process is then in `nginx_process`.
#   start_nginx FOLDER PORT
start_nginx() {
  local folder=$1 port=$2
  nginx -c "$folder/nginx.conf" -p "$folder" 2>"$folder/start.log" &
  nginx_process=$!
  while ! (exec 4<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do
    kill -0 "$nginx_process" 2>/dev/null || die "nginx did not start: $(cat "$folder/start.log")"
    sleep 0.05
  done
}

stop_nginx() {
  [ -n "${nginx_process:-}" ] || return 0
  kill "$nginx_process" 2>/dev/null || true
  wait "$nginx_process" 2>/dev/null || true
}
